// MainWindow: still pictures of the live view.
#include "mainwindow.h"

#include <QPushButton>

#include "app/orvixlogging.h"

void MainWindow::captureStillImage()
{
    if (!imageCapture) {
        qWarning() << "QCameraImageCapture is not ready!";
        return;
    }
    // Writing snapshot files arrives with the snapshot work.
    qCWarning(lcRecording) << "captureStillImage: snapshots are not available in this build yet";
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
