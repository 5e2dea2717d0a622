// MainWindow: the storage root, its folders and the removal of files.
#include "mainwindow.h"

#include <QStackedWidget>

#include "app/orvixlogging.h"

void MainWindow::setStorageBrowserRoot(const QString &root)
{
    // The thumbnail browser of the storage root arrives with the storage work.
    qCDebug(lcStorage) << "storage root" << root;
}

void MainWindow::removeSelectedFile()
{
    stackedPlayers->setCurrentIndex(1);
    qCWarning(lcStorage) << "removeSelectedFile: not available in this build yet";
}

void MainWindow::updateStorageRoot()
{
    qCWarning(lcStorage) << "updateStorageRoot: not available in this build yet";
}

void MainWindow::openMoviesFolder()
{
    qCWarning(lcStorage) << "openMoviesFolder: not available in this build yet";
}

void MainWindow::openImagesFolder()
{
    qCWarning(lcStorage) << "openImagesFolder: not available in this build yet";
}
