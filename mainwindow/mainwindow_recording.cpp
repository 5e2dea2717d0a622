// MainWindow: recording control, the recording guard and the File Size menu.
#include "mainwindow.h"

#include <utility>

#include <QAction>
#include <QDateTime>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QMediaMetaData>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QStorageInfo>

#include "app/orvixlogging.h"
#include "app/settingskeys.h"
#include "capture/recordingelements.h"
#include "hospital/dicomnode.h"
#include "hospital/dicomobjects.h"
#include "mainwindow/moviepicture.h"
#include "mainwindow/sizelimit.h"
#include "storage/recordinginformation.h"
#include "storage/storagepaths.h"
#include "tasks/orvixdelaytask.h"
#include "tasks/orvixfilesplittask.h"
#include "widgets/animationlabel.h"
#include "widgets/footswitch.h"

namespace {
constexpr int focusHintMsec = 5000;
constexpr int guardIntervalMsec = 500;
// Video at the encoder's rate plus the sound.
constexpr qint64 nominalBytesPerSecond = (RecordingElements::bitrateKbit + 128) * 1000 / 8;
// Longer names are refused by the usual Linux file systems.
constexpr int longestFileNameBytes = 255;
// How long a stop waits for a new file's first picture and sound.
constexpr int maximumStopWaitMsec = 5000;
constexpr int stopPollMsec = 100;
// Headers alone; a single 1080p picture is several times this.
constexpr qint64 emptyMovieBytes = 16 * 1024;

QString megabytes(qint64 bytes)
{
    return QStringLiteral("%1 MB").arg(bytes / (1024 * 1024));
}
}

void MainWindow::setupRecordingGuard()
{
    recordingGuard = RecordingGuard(nominalBytesPerSecond);
    recordingClock.start();
    connect(&recordingGuardTimer, &QTimer::timeout, this, &MainWindow::checkRecording);
    connect(&stopWaitTimer, &QTimer::timeout, this, &MainWindow::stopWhenWritten);
    connect(&snapshotGuardTimer, &QTimer::timeout, this, &MainWindow::checkSnapshots);
}

// A stop and a new start within one second would give the same name, and
// the recorder would write over the earlier movie: a later second is taken.
QString MainWindow::newMoviePath() const
{
    const QString root = storageRoot();
    const QDateTime now = QDateTime::currentDateTime();
    const QString name = liveRecordingInformation().fileName;
    QString path = StoragePaths::moviePath(root, name, now);
    for (int later = 1; QFileInfo::exists(path) && later < 3600; ++later)
        path = StoragePaths::moviePath(root, name, now.addSecs(later));
    return path;
}

QString MainWindow::storageRoot()
{
    return QSettings().value(SettingsKeys::storageLocation, QString()).toString();
}

RecordingInformation MainWindow::panelInformation() const
{
    return { informationText(1), informationText(2), informationText(3), informationText(4), informationText(5) };
}

RecordingInformation MainWindow::liveRecordingInformation() const
{
    // While a stored file is looked at, the panel shows that file's texts;
    // the next file of a split recording takes the ones put aside.
    if (!liveInformationShown)
        return { liveInformation[0], liveInformation[1], liveInformation[2], liveInformation[3], liveInformation[4] };
    return panelInformation();
}

void MainWindow::captureVideo()
{
    if (!recorder)
        return;
    // Between two files of a split the recorder stands still, but the
    // recording goes on: a press then means stop, not a new recording.
    if (splitPending || splitDelayTask) {
        qCDebug(lcRecording) << "stop between two files; recorder" << recorder->recorderState();
        forgetSplitDelay();
        stopRecording();
        return;
    }
    if (recorder->recorderState() != QMediaRecorder::StoppedState) {
        if (recorder->recorderState() == QMediaRecorder::PausedState) {
            // Record while paused resumes instead of stopping, on purpose.
            recorder->record();
            pauseAction->setText(tr("Pause"));
            return;
        }
        stopRecordingOnceStarted();
        return;
    }

    if (informationText(1).isEmpty()) {
        QMessageBox box(QMessageBox::Question, QString(), tr("Please Enter File information"),
                        QMessageBox::Ok, nullptr, Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint);
        box.exec();
        showFileNameHint();
        return;
    }

    const QString path = newMoviePath();
    if (!roomToStart(path) || !nameFitsFileSystem(path))
        return;
    const QString folderNote = movieFolderNote(path);
    recordingWanted = true;
    ++recordingSeries;
    recordingSeriesUid = DicomUid::make();
    recordingFileNumber = 0;
    beginMovieFile(path);

    const RecordingInformation information = liveRecordingInformation();
    const QString metaDataString = information.metaDataComment();
    qCDebug(lcRecording) << "metaDataString:" << metaDataString;
    QMediaMetaData metaData;
    metaData.insert(QMediaMetaData::Title, information.fileName);
    metaData.insert(QMediaMetaData::Comment, metaDataString);
    recorder->setMetaData(metaData);

    recorder->record();
    recordTimeBadge->show();
    spaceLowWarned = false;
    watchMovieFile(path);
    setupRecordingUIState();
    if (!folderNote.isEmpty())
        showRecordingWarning(folderNote);
}

// The recorder makes a missing folder itself; the user is told when the
// movie does not land where the storage browser looks.
QString MainWindow::movieFolderNote(const QString &path)
{
    const QString folder = QFileInfo(path).absolutePath();
    const QString movies = QFileInfo(StoragePaths::join(storageRoot(), QStringLiteral("Movie"))).absoluteFilePath();
    if (QDir::cleanPath(folder) != QDir::cleanPath(movies))
        return tr("The file name contains \"%1\", so the movie is recorded into the folder %2, "
                  "not into the Movie folder, and the storage browser does not show it.")
                .arg(QString(QDir::separator()), QDir::toNativeSeparators(folder));
    if (!QFileInfo(folder).isDir())
        return tr("The folder %1 did not exist (was the storage folder moved or deleted?). "
                  "It has been made again, and the movie is recorded into it.")
                .arg(QDir::toNativeSeparators(folder));
    return QString();
}

// A file stopped before both picture and sound have reached it ends with an
// index that no player opens: the stop waits until the muxer has written
// more than headers, for a few seconds at most.
void MainWindow::stopRecordingOnceStarted()
{
    if (stopWaitTimer.isActive())
        return;
    // Wanted no more from now on: a split asked for meanwhile is not made,
    // and no next file is started.
    recordingWanted = false;
    stopWaitDeadline = QDeadlineTimer(maximumStopWaitMsec);
    stopWaitTimer.start(stopPollMsec);
    stopWhenWritten();
}

void MainWindow::stopWhenWritten()
{
    const bool writing = recorder && !recordingMoviePath.isEmpty()
            && recorder->recorderState() != QMediaRecorder::StoppedState;
    if (writing && QFileInfo(recordingMoviePath).size() <= emptyMovieBytes && !stopWaitDeadline.hasExpired())
        return;
    stopWaitTimer.stop();
    // Whatever happened while it waited, the recording ends here.
    forgetSplitDelay();
    if (recorder)
        stopRecording();
}

void MainWindow::stopRecording()
{
    recordingWanted = false;
    ++recordingSeries;
    // Forgotten first, so that the stop is not taken for a failure.
    if (!recordingMoviePath.isEmpty())
        finishingMoviePath = std::exchange(recordingMoviePath, QString());
    recordingGuardTimer.stop();
    recorder->stop();
    hideRecordingTime();
    abortFileSplitTask();
    setupIdleUIState();
}

// The next recording starts from nothing, also on the badge before its
// first time arrives.
void MainWindow::hideRecordingTime()
{
    recordTimeBadge->hide();
    offsetHours = offsetMinutes = offsetSeconds = 0;
    updateRecordTime(0);
}

void MainWindow::showFileNameHint()
{
    focusHintTimer.stop();
    videoCaptureButton->setChecked(false);
    informationFields[1]->setAttribute(Qt::WA_MacShowFocusRect, true);
    informationFields[1]->setFocus(Qt::OtherFocusReason);
    focusHintTimer.start(focusHintMsec);
}

void MainWindow::beginMovieFile(const QString &path)
{
    // The last file's end may have stopped the microphone (see checkRecording).
    RecordingElements::reviveStoppedSources();
    RecordingElements::releaseKeptMuxers();
    recorder->setOutputLocation(QUrl::fromLocalFile(path));
    liveRecordingInformation().write(StoragePaths::recordingInformationPath(path));
    ++recordingFileNumber;
    caseOfNewFile(path).write(StoragePaths::recordingInformationPath(path));
    lastMovieFile = path;
}

qint64 MainWindow::splitSize() const
{
    // A movie goes to the archive as one object, which holds 4 GB at most:
    // while movies are sent by themselves, none grows past that.
    if (!HospitalSettings::sendAutomatically() || !HospitalSettings::node(HospitalSettings::Role::Archive).isComplete())
        return sizeLimit;
    const qint64 archivable = DicomObjects::archivableFileSize();
    return sizeLimit > 0 ? qMin(sizeLimit, archivable) : archivable;
}

void MainWindow::watchMovieFile(const QString &path)
{
    abortFileSplitTask();
    fileSplitTask = new OrvixFileSplitTask(path, splitSize(), nullptr);
    fileSplitConnection = connect(fileSplitTask, SIGNAL(splitFile()), this, SLOT(splitVideoFile()));
    OrvixBasicTask::runInThread(fileSplitTask);

    recordingMoviePath = path;
    lastRecorderError.clear();
    recordingGuard.begin(recordingClock.elapsed());
    recordingGuardTimer.start(guardIntervalMsec);
}

void MainWindow::continueCaptureVideo()
{
    splitDelayTask = nullptr;
    if (!recorder || !recordingWanted)
        return;
    if (liveRecordingInformation().fileName.isEmpty()) {
        // The recording stays stopped under the recording state; deliberate.
        showFileNameHint();
        return;
    }
    splitPending = false;
    const QString path = newMoviePath();
    beginMovieFile(path);
    recorder->record();
    watchMovieFile(path);
}

void MainWindow::pauseCaptureVideo()
{
    if (!recorder)
        return;
    if (recorder->recorderState() == QMediaRecorder::PausedState) {
        recorder->record();
        pauseAction->setText(tr("Pause"));
    } else if (recorder->recorderState() == QMediaRecorder::RecordingState) {
        recorder->pause();
        pauseAction->setText(tr("Resume"));
    }
}

// The pedals do one thing each, where the designed keys toggle: Record
// never stops and Stop never resumes.
void MainWindow::footPedal(int pedal)
{
    switch (FootSwitch::Pedal(pedal)) {
    case FootSwitch::Pedal::Snapshot:
        captureStillImage();
        break;
    case FootSwitch::Pedal::Record:
        if (!recorder || splitPending || splitDelayTask)
            break;
        if (recorder->recorderState() == QMediaRecorder::StoppedState)
            captureVideo();
        else if (recorder->recorderState() == QMediaRecorder::PausedState)
            pauseCaptureVideo();
        break;
    case FootSwitch::Pedal::Stop:
        if (!recorder)
            break;
        if (splitPending || splitDelayTask)
            captureVideo();
        else if (recorder->recorderState() != QMediaRecorder::StoppedState)
            stopRecordingOnceStarted();
        break;
    case FootSwitch::Pedal::PauseResume:
        pauseCaptureVideo();
        break;
    }
}

void MainWindow::splitVideoFile()
{
    if (!recorder || !recordingWanted || recorder->recorderState() != QMediaRecorder::RecordingState)
        return;
    // Asked for by the watcher of an earlier file, before it was let go.
    if (sender() && sender() != fileSplitTask.data())
        return;
    abortFileSplitTask();
    finishingMoviePath = std::exchange(recordingMoviePath, QString());
    recordingGuardTimer.stop();
    recorder->stop();
    splitPending = true;
}

void MainWindow::updateRecorderState(QMediaRecorder::RecorderState state)
{
    if (state != QMediaRecorder::StoppedState)
        return;
    const QString finished = std::exchange(finishingMoviePath, QString());
    if (!removeEmptyMovie(finished))
        movieFinished(finished);
    if (splitPending) {
        auto *delay = new OrvixDelayTask;
        // A call already queued when the recording stops still arrives.
        connect(delay, &OrvixDelayTask::delay_surgical, this, [this, series = recordingSeries](int) {
            if (series == recordingSeries)
                continueCaptureVideo();
        }, Qt::QueuedConnection);
        connect(delay, &QThread::finished, delay, &QObject::deleteLater);
        splitDelayTask = delay;
        delay->start(QThread::InheritPriority);
        splitPending = false;
        offsetHours += recordHours;
        offsetMinutes += recordMinutes;
        offsetSeconds += recordSeconds;
    }
    // A stop that neither the user nor a split asked for is the guard's to
    // report (checkRecording).
}

// A file stopped before its first picture reached it holds only headers,
// or only sound, and no player opens it; it and its information file go,
// and the user is told (unless the caller tells it its own way).
bool MainWindow::removeEmptyMovie(const QString &path, bool tell)
{
    const QFileInfo movie(path);
    if (path.isEmpty() || !movie.exists() || (movie.size() > emptyMovieBytes && MoviePicture::holdsPicture(path)))
        return false;
    qCInfo(lcRecording) << "removing a movie that holds no picture:" << path;
    QFile::remove(path);
    QFile::remove(StoragePaths::recordingInformationPath(path));
    if (tell)
        showRecordingWarning(tr("The recording %1 was stopped before the camera's first picture reached it. "
                                "It held no picture and no player could open it, so it has been removed "
                                "with its information file.")
                                     .arg(QDir::toNativeSeparators(path)));
    return true;
}

void MainWindow::updateRecordTime(qlonglong duration)
{
    const qlonglong s = duration / 1000 + offsetSeconds;
    const qlonglong m = s / 60 + offsetMinutes;
    recordSeconds = int(s % 60);
    recordHours = int(offsetHours + m / 60);
    recordMinutes = int(m % 60);
    recordTimeBadge->setText(QStringLiteral("%1:%2:%3")
                                     .arg(recordHours, 2, 10, QLatin1Char('0'))
                                     .arg(recordMinutes, 2, 10, QLatin1Char('0'))
                                     .arg(recordSeconds, 2, 10, QLatin1Char('0')));
}

void MainWindow::recorderError(QMediaRecorder::Error)
{
    QMessageBox::warning(this, tr("Capture error"), recorder->errorString(), QMessageBox::Ok);
}

void MainWindow::hideFocusRect()
{
    informationFields[1]->setAttribute(Qt::WA_MacShowFocusRect, false);
}

void MainWindow::abortFileSplitTask()
{
    disconnect(fileSplitConnection);
    // It deletes itself with its thread; after a split it already has.
    if (OrvixFileSplitTask *task = fileSplitTask.data())
        task->abort();
    fileSplitTask = nullptr;
}

void MainWindow::forgetSplitDelay()
{
    splitPending = false;
    if (!splitDelayTask)
        return;
    // It ends within a second and deletes itself; it must not start a file.
    disconnect(splitDelayTask, &OrvixDelayTask::delay_surgical, this, nullptr);
    splitDelayTask = nullptr;
}

void MainWindow::noteRecorderError(QMediaRecorder::Error, const QString &errorString)
{
    // Qt stops the recorder with the error; the guard's next look reports
    // it, with this text where nothing plainer is known.
    qCWarning(lcRecording) << "recorder error:" << errorString;
    lastRecorderError = errorString;
}

// What keeps a file from being written into its folder, as far as can be
// seen from here; empty when nothing does.
QString MainWindow::folderProblem(const QString &path)
{
    const QFileInfo folder(QFileInfo(path).absolutePath());
    if (!folder.isDir())
        return tr("its folder %1 does not exist").arg(QDir::toNativeSeparators(folder.absoluteFilePath()));
    if (!folder.isWritable())
        return tr("its folder %1 cannot be written to").arg(QDir::toNativeSeparators(folder.absoluteFilePath()));
    const QStorageInfo volume(folder.absoluteFilePath());
    if (volume.isValid() && volume.bytesAvailable() < RecordingGuard::finishReserveBytes)
        return tr("the disk is full");
    return QString();
}

// Why the movie file is not being written, as far as can be seen from here.
QString MainWindow::movieFileProblem(const QString &path, bool exists) const
{
    const QString problem = folderProblem(path);
    if (!problem.isEmpty())
        return problem;
    if (!lastRecorderError.isEmpty())
        return lastRecorderError;
    return exists ? tr("it has not grown for %1 seconds").arg(RecordingGuard::graceMsec / 1000)
                  : tr("the recorder has not created it");
}

void MainWindow::recordingFailed(const QString &reason)
{
    const QString path = recordingMoviePath;
    qCWarning(lcRecording) << "recording failed:" << path << reason;
    stopRecording();
    showRecordingWarning(tr("Nothing is being recorded into %1: %2.\n\n"
                            "The recording has been stopped. Check the file name and the storage folder, "
                            "then press Record to start again.")
                                 .arg(QDir::toNativeSeparators(path), reason));
}

// The recorder would fail on such a name, and the failure's echoes would
// stop the next recording too: it is refused before it starts.
bool MainWindow::nameFitsFileSystem(const QString &path)
{
    if (QFileInfo(path).fileName().toLocal8Bit().size() <= longestFileNameBytes)
        return true;
    videoCaptureButton->setChecked(false);
    showRecordingWarning(tr("No recording was started into %1: the file name is too long for the file system.\n\n"
                            "Shorten the file name and press Record again.")
                                 .arg(QDir::toNativeSeparators(path)));
    return false;
}

bool MainWindow::roomToStart(const QString &path)
{
    const QStorageInfo volume(QFileInfo(path).absolutePath());
    if (!volume.isValid() || volume.bytesAvailable() >= RecordingGuard::finishReserveBytes
                + RecordingGuard::stopSeconds * recordingGuard.bytesPerSecond())
        return true;
    videoCaptureButton->setChecked(false);
    showRecordingWarning(tr("The disk of the storage folder is full (%1 free): no recording was started.\n\n"
                            "Make room on it or choose another storage folder.")
                                 .arg(megabytes(volume.bytesAvailable())));
    return false;
}

void MainWindow::checkRecording()
{
    if (!recorder || recordingMoviePath.isEmpty())
        return;
    const qint64 now = recordingClock.elapsed();
    if (recorder->recorderState() == QMediaRecorder::PausedState) {
        recordingGuard.resume(now);
        return;
    }
    if (recorder->recorderState() == QMediaRecorder::StoppedState) {
        // The recorder refused to start, or stopped without saying so.
        recordingFailed(movieFileProblem(recordingMoviePath, QFileInfo::exists(recordingMoviePath)));
        return;
    }

    const QFileInfo file(recordingMoviePath);
    const QStorageInfo volume(file.absolutePath());
    const qint64 available = volume.isValid() ? volume.bytesAvailable() : -1;
    const bool exists = file.exists();
    const RecordingGuard::Finding finding = recordingGuard.check(now, exists, file.size(), available);
    // A source that stopped is set going again at once, before the
    // recording is given up for not growing.
    if (RecordingElements::reviveStoppedSources() > 0) {
        recordingGuard.resume(now);
        return;
    }
    switch (finding) {
    case RecordingGuard::Finding::None:
        break;
    case RecordingGuard::Finding::NotCreated:
    case RecordingGuard::Finding::NotGrowing:
        recordingFailed(movieFileProblem(recordingMoviePath, exists));
        break;
    case RecordingGuard::Finding::SpaceExhausted: {
        const QString path = recordingMoviePath;
        stopRecording();
        showRecordingWarning(tr("The disk of the storage folder is almost full (%1 free).\n\n"
                                "The recording has been stopped and saved as %2. "
                                "Make room on the disk before recording again.")
                                     .arg(megabytes(available), QDir::toNativeSeparators(path)));
        break;
    }
    case RecordingGuard::Finding::SpaceLow:
        if (!spaceLowWarned) {
            spaceLowWarned = true;
            showRecordingWarning(tr("Only about %1 minutes of recording still fit on the disk of the storage folder "
                                    "(%2 free).\n\nThe recording goes on and is stopped and saved before the disk "
                                    "is full. Make room on the disk or choose another storage folder.")
                                         .arg(recordingGuard.secondsThatFit(available) / 60)
                                         .arg(megabytes(available)));
        }
        break;
    }
}

void MainWindow::showNotice(QPointer<QMessageBox> &box, const QString &title, const QString &name, const QString &text)
{
    // Not modal: the live view and F4/F5 must stay within reach. One box
    // per kind, brought back, never a stream of them.
    if (!box) {
        box = new QMessageBox(QMessageBox::Warning, title, QString(), QMessageBox::Ok, this);
        box->setObjectName(name);
        box->setWindowModality(Qt::NonModal);
    }
    box->setText(text);
    box->show();
    box->raise();
}

void MainWindow::showRecordingWarning(const QString &text)
{
    showNotice(recordingWarning, tr("Recording"), QStringLiteral("RecordingWarning"), text);
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
