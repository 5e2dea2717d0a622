// MainWindow: still pictures of the live view.
#include "mainwindow.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPushButton>

#include "app/orvixlogging.h"
#include "hospital/archivequeue.h"
#include "storage/storagepaths.h"

namespace {
// A snapshot not saved by then is reported; saving takes a fraction of it.
constexpr int snapshotWaitMsec = 2000;
constexpr int snapshotPollMsec = 250;

// A JPEG file written to its end: a full disk leaves one cut short.
bool isWholePicture(const QString &path)
{
    QFile file(path);
    if (file.size() < 4 || !file.open(QIODevice::ReadOnly) || !file.seek(file.size() - 2))
        return false;
    return file.read(2) == QByteArray("\xff\xd9", 2);
}
}

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
    archiveQueue->rememberPicture(path, snapshotContext(path));
    imageCaptureButton->setEnabled(false);

    // Qt reports a snapshot that cannot be saved through a signal the window
    // does not hear (see setCamera): it is watched for here instead.
    pendingSnapshots.append({ path, QDeadlineTimer(snapshotWaitMsec) });
    snapshotGuardTimer.start(snapshotPollMsec);
}

void MainWindow::readyForCapture(bool ready)
{
    imageCaptureButton->setEnabled(ready);
}

void MainWindow::capturedImage(int, QImage)
{
}

void MainWindow::imageSaved(int, QString fileName)
{
    imageCapturePending = false;
    imageCaptureButton->setEnabled(true);
    // Qt says so also of a picture it could write only part of: the file is
    // left to the guard's next look, which knows a whole picture by its end.
    const QString saved = QFileInfo(fileName).absoluteFilePath();
    for (auto &snapshot : pendingSnapshots) {
        if (QFileInfo(snapshot.first).absoluteFilePath() == saved)
            snapshot.second = QDeadlineTimer(0);
    }
    checkSnapshots();
}

void MainWindow::captureError(int, QImageCapture::Error, QString)
{
    imageCapturePending = false;
    imageCaptureButton->setEnabled(true);
}

void MainWindow::noteCaptureError(int, QImageCapture::Error, const QString &errorString)
{
    qCWarning(lcRecording) << "snapshot error:" << errorString;
    lastCaptureError = errorString;
}

void MainWindow::checkSnapshots()
{
    QStringList lost;
    pendingSnapshots.removeIf([&](const auto &snapshot) {
        if (!snapshot.second.hasExpired())
            return false;
        // Saved whole, though maybe by a capture that went with its camera
        // before it could say so.
        if (!isWholePicture(snapshot.first))
            lost.append(snapshot.first);
        else
            snapshotKept(snapshot.first);
        return true;
    });
    if (pendingSnapshots.isEmpty())
        snapshotGuardTimer.stop();
    if (lost.isEmpty())
        return;

    QString reason = folderProblem(lost.last());
    if (reason.isEmpty())
        reason = !lastCaptureError.isEmpty() ? lastCaptureError : tr("no picture came from the camera");
    lastCaptureError.clear();
    qCWarning(lcRecording) << "snapshot not saved:" << lost << reason;
    // What the designed error slot would do, had it been reached.
    captureError(0, QImageCapture::ResourceError, reason);
    QStringList files;
    for (const QString &path : std::as_const(lost))
        files.append(QDir::toNativeSeparators(path));
    showRecordingWarning(tr("The snapshot %1 was not saved: %2.\n\n"
                            "Check the storage folder, then take the snapshot again.")
                                 .arg(files.join(QStringLiteral(", ")), reason));
}
