// MainWindow: still pictures of the live view.
#include "mainwindow.h"

#include <QDateTime>
#include <QPushButton>

#include "app/orvixlogging.h"
#include "storage/storagepaths.h"

void MainWindow::captureStillImage()
{
    if (!imageCapture) {
        qWarning() << "QCameraImageCapture is not ready!";
        return;
    }
    // The folder is not made here: first run and a new storage root make it.
    const QString path = StoragePaths::imagePath(storageRoot(), QDateTime::currentDateTime());
    imageCapturePending = true;
    imageCapture->captureToFile(path);
    imageCaptureButton->setEnabled(false);
}

void MainWindow::readyForCapture(bool ready)
{
    imageCaptureButton->setEnabled(ready);
}

void MainWindow::capturedImage(int, QImage)
{
}

void MainWindow::imageSaved(int, QString)
{
    imageCapturePending = false;
    imageCaptureButton->setEnabled(true);
}

void MainWindow::captureError(int, QImageCapture::Error, QString)
{
    imageCapturePending = false;
    imageCaptureButton->setEnabled(true);
}
