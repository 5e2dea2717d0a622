// MainWindow: recording control and the File Size menu.
#include "mainwindow.h"

#include <QAction>
#include <QLineEdit>
#include <QSettings>

#include "app/orvixlogging.h"
#include "app/settingskeys.h"
#include "mainwindow/sizelimit.h"
#include "tasks/orvixfilesplittask.h"

void MainWindow::captureVideo()
{
    // Starting and stopping recordings arrives with the recording work.
    qCWarning(lcRecording) << "captureVideo: recording is not available in this build yet";
}

void MainWindow::pauseCaptureVideo()
{
    if (!recorder)
        return;
    if (recorder->recorderState() == QMediaRecorder::PausedState) {
        recorder->record();
        pauseAction->setText(QStringLiteral("Pause"));
    } else if (recorder->recorderState() == QMediaRecorder::RecordingState) {
        recorder->pause();
        pauseAction->setText(QStringLiteral("Resume"));
    }
}

void MainWindow::splitVideoFile()
{
    qCWarning(lcRecording) << "splitVideoFile: recording is not available in this build yet";
}

void MainWindow::updateRecorderState(QMediaRecorder::RecorderState state)
{
    qCDebug(lcRecording) << "recorder state" << state;
}

void MainWindow::updateRecordTime(qlonglong duration)
{
    qCDebug(lcRecording) << "recorded" << duration << "ms";
}

void MainWindow::recorderError(QMediaRecorder::Error error)
{
    qCWarning(lcRecording) << "recorder error" << error;
}

void MainWindow::hideFocusRect()
{
    informationFields[1]->setAttribute(Qt::WA_MacShowFocusRect, false);
}

void MainWindow::abortFileSplitTask()
{
    if (!fileSplitTask)
        return;
    fileSplitTask->abort();
    // It deletes itself with its thread.
    fileSplitTask = nullptr;
}

void MainWindow::applySizeLimitEntry(int entry)
{
    QAction *action = sizeActions[entry];
    if (action->isChecked()) {
        QSettings().setValue(SettingsKeys::sizeLimit, SizeLimit::storedValue(SizeLimit::Entry(entry)));
        sizeLimit = SizeLimit::byteLimit(SizeLimit::Entry(entry));
        action->setChecked(true);
        // Kept exclusive by hand; each unchecked entry's slot only re-checks
        // this one, so the cascade ends after one pass.
        for (int other = 0; other < SizeLimit::EntryCount; ++other) {
            if (other != entry)
                sizeActions[other]->setChecked(false);
        }
    } else {
        restoreSizeLimitEntry();
    }
}

void MainWindow::restoreSizeLimitEntry()
{
    const int entry = SizeLimit::entryForLimit(sizeLimit);
    if (entry >= 0) {
        sizeActions[entry]->setChecked(true);
    } else {
        sizeActions[SizeLimit::TwoGB]->setChecked(true);
        sizeLimit = SizeLimit::unknownValueLimit;
    }
}

void MainWindow::checkSizeLimitEntryAtStart(int storedValue)
{
    const int entry = SizeLimit::entryForStoredValue(storedValue);
    if (entry >= 0) {
        sizeActions[entry]->setChecked(true);
    } else {
        sizeActions[SizeLimit::TwoGB]->setChecked(true);
        // Not written back: the 2 GB slot has stored its own value.
        sizeLimit = SizeLimit::unknownValueLimit;
    }
}

void MainWindow::limitSizeTo1GB() { applySizeLimitEntry(SizeLimit::OneGB); }
void MainWindow::limitSizeTo2GB() { applySizeLimitEntry(SizeLimit::TwoGB); }
void MainWindow::limitSizeTo3GB() { applySizeLimitEntry(SizeLimit::ThreeGB); }
void MainWindow::limitSizeTo4GB() { applySizeLimitEntry(SizeLimit::FourGB); }
void MainWindow::limitSizeTo5GB() { applySizeLimitEntry(SizeLimit::FiveGB); }
void MainWindow::limitSizeTo10GB() { applySizeLimitEntry(SizeLimit::TenGB); }
void MainWindow::limitSizeToNoLimit() { applySizeLimitEntry(SizeLimit::NoLimit); }
