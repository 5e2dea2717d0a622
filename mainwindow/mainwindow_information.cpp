// MainWindow: the information panel, live values and browsed files.
#include "mainwindow.h"

#include <QLineEdit>
#include <QTextEdit>

#include "app/orvixlogging.h"

QString MainWindow::informationText(int field) const
{
    if (auto *edit = qobject_cast<QLineEdit *>(informationFields[field]))
        return edit->text();
    return static_cast<QTextEdit *>(informationFields[field])->toPlainText();
}

void MainWindow::setInformationText(int field, const QString &text)
{
    if (auto *edit = qobject_cast<QLineEdit *>(informationFields[field]))
        edit->setText(text);
    else
        static_cast<QTextEdit *>(informationFields[field])->setText(text);
}

void MainWindow::refillLiveInformation()
{
    liveInformationShown = true;
    for (int i = 0; i < 5; ++i)
        setInformationText(i + 1, liveInformation[i]);
}

void MainWindow::stopMediaPlayer()
{
    // The media player page arrives with the storage browser work.
}

void MainWindow::selectionChanged(QModelIndex)
{
    qCWarning(lcStorage) << "selectionChanged: the storage browser is not available in this build yet";
}

void MainWindow::toggleInformationEdit()
{
    qCWarning(lcStorage) << "toggleInformationEdit: not available in this build yet";
}

void MainWindow::rollbackInformation()
{
    qCWarning(lcStorage) << "rollbackInformation: not available in this build yet";
}
