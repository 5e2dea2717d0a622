// Recording for real: movies from the virtual camera and microphone through
// Qt's recorder, checked with ffprobe and ffmpeg; the information files;
// splitting; snapshots; and the failures an operating room meets: a killed
// program, a pulled camera, a full disk, a bad file name, a vanished folder.
#include <algorithm>
#include <optional>
#include <csignal>

#include <unistd.h>
#ifdef __linux__
#include <cerrno>
#include <sys/resource.h>
#endif

#include <QDeadlineTimer>
#include <QDir>
#include <QProcess>
#include <QScopeGuard>
#include <QSet>
#include <QFileInfo>
#include <QLineEdit>
#include <QMediaDevices>
#include <QMediaMetaData>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QSettings>
#include <QTextEdit>
#include <QThread>

#include "app/settingskeys.h"
#include "capture/recordingelements.h"
#include "hospital/caseinformation.h"
#include "mainwindow/mainwindow.h"
#include "logcheck.h"
#include "messageboxwatcher.h"
#include "movieprobe.h"
#include "orvixtest.h"
#include "storage/recordinginformation.h"

namespace {
const QString fullHd = QStringLiteral("Orvix Full HD Camera");
const QString fileNameEdit = QStringLiteral("InformationFileNameEdit");
// The guard speaks after 3 s without growth; it looks twice a second.
constexpr int guardWait = 4000;

// The 1080p 30 fps camera a recording is made from.
QString cameraLine()
{
    return VirtualDevices::cameraLine(fullHd, QStringLiteral("video/x-raw,format=YUY2,width=1920,height=1080,framerate=30/1"));
}

void setField(MainWindow &window, const QString &name, const QString &text)
{
    if (auto *line = window.findChild<QLineEdit *>(name))
        line->setText(text);
    else
        window.findChild<QTextEdit *>(name)->setPlainText(text);
}

QStringList movies(const QString &root)
{
    return QDir(root + QStringLiteral("/Movie")).entryList({ QStringLiteral("*.mp4") }, QDir::Files, QDir::Name);
}

// Threads of this process at that nice value; -1 where that is not known.
int threadsAtNice(int niceValue)
{
#ifdef Q_OS_LINUX
    int found = 0;
    for (const QString &id : QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        errno = 0;
        const int now = getpriority(PRIO_PROCESS, id_t(id.toInt()));
        found += errno == 0 && now == niceValue;
    }
    return found;
#else
    Q_UNUSED(niceValue);
    return -1;
#endif
}

// The streaming threads of Qt's snapshot branch, by id and name. Qt names
// that branch's queue "imageCaptureQueue"; Linux keeps 15 characters.
QStringList snapshotThreads()
{
    QStringList found;
#ifdef Q_OS_LINUX
    const QDir tasks(QStringLiteral("/proc/self/task"));
    for (const QString &id : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile name(tasks.filePath(id + QStringLiteral("/comm")));
        if (name.open(QIODevice::ReadOnly) && name.readAll().startsWith("imageCaptureQue"))
            found.append(id);
    }
#endif
    return found;
}

bool recording(MainWindow &window)
{
    return window.currentRecorder() && window.currentRecorder()->recorderState() == QMediaRecorder::RecordingState;
}

bool stopped(MainWindow &window)
{
    return window.currentRecorder() && window.currentRecorder()->recorderState() == QMediaRecorder::StoppedState;
}

QMessageBox *recordingWarning(MainWindow &window)
{
    auto *box = window.findChild<QMessageBox *>(QStringLiteral("RecordingWarning"));
    return box && box->isVisible() ? box : nullptr;
}

// The microphone's sound reaches the recorder a moment after the camera's
// picture: a recording started at once would begin without sound.
void settle(MainWindow &window)
{
    QVERIFY(window.isCameraLive());
    QTest::qWait(2000);
}

// A warning other than the notice that a file without a picture was
// removed, which a 2-byte limit may well bring.
QString failureWarning(MainWindow &window)
{
    QMessageBox *box = recordingWarning(window);
    return box && !box->text().contains(QLatin1String("held no picture")) ? box->text() : QString();
}

bool buttonChecked(MainWindow &window)
{
    return window.findChild<QPushButton *>(QStringLiteral("VideoCaptureButton"))->isChecked();
}

// A small file system of its own at `mountPoint`, for a full or a read-only
// disk. Only root can mount one; the caller skips elsewhere.
bool mountSmallDisk(const QString &mountPoint, const QString &size)
{
    QDir().mkpath(mountPoint);
    return QProcess::execute(QStringLiteral("mount"), { QStringLiteral("-t"), QStringLiteral("tmpfs"), QStringLiteral("-o"),
                                                         QStringLiteral("size=") + size, QStringLiteral("tmpfs"), mountPoint })
            == 0;
}

void unmount(const QString &mountPoint)
{
    QProcess::execute(QStringLiteral("umount"), { QStringLiteral("-l"), mountPoint });
}

int badgeSeconds(MainWindow &window)
{
    const QStringList parts = window.recordingTimeBadge()->text().split(QLatin1Char(':'));
    return parts.size() == 3 ? parts[0].toInt() * 3600 + parts[1].toInt() * 60 + parts[2].toInt() : -1;
}

// Qt's recorder sometimes stops the camera's or the microphone's source as
// a file starts; the program sets it going again within half a second, and
// that file then misses as much picture or sound. Counted from here.
int revivedAtStart = 0;

// Plays everywhere: H.264 4:2:0 in High or Main profile, with its sound as
// long as its picture (within `soundSlack` seconds: a microphone that
// delivers in blocks lags by up to a block's end at the stop), decoded from
// end to end without a complaint.
void verifyPlayable(const MovieProbe &movie, double soundSlack = 0.3)
{
    const bool gapExplained = RecordingElements::revivedSources() > revivedAtStart;
    if (gapExplained && qAbs(movie.audioSeconds - movie.videoSeconds) > 0.3)
        qInfo("a source was set going again; picture and sound differ: %s", qPrintable(movie.describe()));
    QVERIFY2(movie.opened, qPrintable(movie.describe()));
    QCOMPARE(movie.videoCodec, QStringLiteral("h264"));
    QVERIFY2(movie.profile == QLatin1String("High") || movie.profile == QLatin1String("Main"), qPrintable(movie.describe()));
    QCOMPARE(movie.pixelFormat, QStringLiteral("yuv420p"));
    QCOMPARE(QSize(movie.width, movie.height), QSize(1920, 1080));
    QCOMPARE(movie.audioCodec, QStringLiteral("mp3"));
    QVERIFY2(movie.audioSeconds > 0, qPrintable(movie.describe()));
    if (!gapExplained)
        QVERIFY2(qAbs(movie.audioSeconds - movie.videoSeconds) <= soundSlack, qPrintable(movie.describe()));
    QVERIFY2(movie.decodeErrors.isEmpty(), qPrintable(movie.describe()));
}
}

class tst_Recording : public QObject
{
    Q_OBJECT

public:
    explicit tst_Recording(VirtualDevices &devices) : devices(devices) { }

private slots:
    void initTestCase()
    {
        QString error;
        QVERIFY2(devices.startAudio(&error), qPrintable(error));
        QVERIFY2(devices.addMicrophone(QStringLiteral("Orvix High Definition Mic II"), 440, &error), qPrintable(error));
        devices.setCameras({ cameraLine() });
        QTRY_COMPARE_WITH_TIMEOUT(QMediaDevices::videoInputs().size(), 1, 5000);
    }

    void init()
    {
        revivedAtStart = RecordingElements::revivedSources();
        root = QDir::cleanPath(devices.home() + QStringLiteral("/") + QTest::currentTestFunction()
                               + QStringLiteral("-") + QTest::currentDataTag());
        QDir().mkpath(root + QStringLiteral("/Movie"));
        QDir().mkpath(root + QStringLiteral("/Image"));
        QSettings settings;
        settings.setValue(SettingsKeys::storageLocation, root);
        settings.setValue(SettingsKeys::sizeLimit, 0);
    }

    // One recording with a pause, from the empty-name message to the file.
    void recordPauseAndStop()
    {
        MainWindow window;
        window.show();
        QVERIFY(window.isCameraLive());

        {
            MessageBoxWatcher watcher;
            window.captureVideo();
            QCOMPARE(watcher.texts, QStringList({ "Please Enter File information" }));
        }
        QVERIFY(stopped(window));
        QVERIFY(movies(root).isEmpty());
        auto *button = window.findChild<QPushButton *>(QStringLiteral("VideoCaptureButton"));
        auto *nameEdit = window.findChild<QLineEdit *>(fileNameEdit);
        QVERIFY(!button->isChecked());
        QVERIFY(nameEdit->testAttribute(Qt::WA_MacShowFocusRect));
        QTRY_VERIFY_WITH_TIMEOUT(!nameEdit->testAttribute(Qt::WA_MacShowFocusRect), 6000);

        const RecordingInformation information { QStringLiteral("case12"), QStringLiteral("Dr. Ørsted"), QString(),
                                                 QStringLiteral("St. Mary's; \"East\" = 1"),
                                                 QStringLiteral("first line\nsecond line, 100% [done]\n手術") };
        setField(window, fileNameEdit, information.fileName);
        setField(window, QStringLiteral("InformationDoctorNameEdit"), information.doctor);
        setField(window, QStringLiteral("InformationPatientNameEdit"), information.patient);
        setField(window, QStringLiteral("InformationHospitalNameEdit"), information.hospital);
        setField(window, QStringLiteral("InformationCommentEdit"), information.comment);

        window.captureVideo();
        QVERIFY(recording(window));
        QVERIFY(button->isChecked());
        QVERIFY(window.recordingTimeBadge()->isVisible());
        QCOMPARE(window.currentRecorder()->metaData().value(QMediaMetaData::Comment).toString(),
                 QStringLiteral("Dr. Ørsted//St. Mary's; \"East\" = 1/") + information.comment);
        QCOMPARE(window.currentRecorder()->metaData().value(QMediaMetaData::Title).toString(), information.fileName);
        // The encoder's threads work below the window's and the live view's.
        const int niceBefore = threadsAtNice(RecordingElements::encoderThreadsNice);
        if (niceBefore >= 0)
            QTRY_VERIFY_WITH_TIMEOUT(threadsAtNice(RecordingElements::encoderThreadsNice) > niceBefore, 3000);

        QTest::qWait(4000);
        window.pauseCaptureVideo();
        QCOMPARE(window.currentRecorder()->recorderState(), QMediaRecorder::PausedState);
        const int badgeAtPause = badgeSeconds(window);
        QTest::qWait(3000);
        QCOMPARE(badgeSeconds(window), badgeAtPause);
        // Record while paused resumes. (The minute-long recordings that show
        // the frame rate holds are the unsteady microphone's.)
        window.captureVideo();
        QVERIFY(recording(window));
        QTest::qWait(10000);
        const int badgeAtStop = badgeSeconds(window);
        QVERIFY2(badgeAtStop >= 13 && badgeAtStop <= 15, qPrintable(window.recordingTimeBadge()->text()));

        window.captureVideo();
        QVERIFY(!window.recordingTimeBadge()->isVisible());
        QVERIFY(!button->isChecked());
        QTRY_VERIFY_WITH_TIMEOUT(stopped(window), 10000);
        QVERIFY(!recordingWarning(window));
        // Only they were lowered, and they end with the file: no thread that
        // outlives the recording, such as a pooled streaming thread, is.
        QTRY_COMPARE_WITH_TIMEOUT(threadsAtNice(RecordingElements::encoderThreadsNice), niceBefore, 5000);

        const QStringList files = movies(root);
        QCOMPARE(files.size(), 1);
        QVERIFY2(QRegularExpression(QStringLiteral("^case12_\\d{6}_\\d{6}\\.mp4$")).match(files.first()).hasMatch(),
                 qPrintable(files.first()));
        const QString movie = root + QStringLiteral("/Movie/") + files.first();
        const QString ini = movie.chopped(4) + QStringLiteral(".ini");
        QCOMPARE(RecordingInformation::read(ini), information);
        QFile iniFile(ini);
        QVERIFY(iniFile.open(QIODevice::ReadOnly));
        QVERIFY(iniFile.readAll().startsWith("[Orvix]\n"));

        const MovieProbe probe = MovieProbe::probe(movie);
        verifyPlayable(probe);
        qInfo("recorded 4 s + 10 s around a 3 s pause: %s", qPrintable(probe.describe()));
        // The pause is left out of the file.
        QVERIFY2(qAbs(probe.videoSeconds - 14) <= 1, qPrintable(probe.describe()));
        QVERIFY2(probe.framesPerSecond() >= 29, qPrintable(probe.describe()));
    }

    // However the microphone hands out its sound, in blocks of up to 2 s, not
    // at all for a while, or not at all once it is unplugged, the picture goes
    // into the file at full rate, the guard has nothing to say, the sound
    // that came is in the file at its time, and it lasts as long as the
    // picture.
    void unsteadyMicrophone_data()
    {
        QTest::addColumn<bool>("blocks");
        QTest::addColumn<bool>("unplugged");
        QTest::addColumn<int>("seconds");
        QTest::newRow("2 s blocks") << true << false << 60;
        QTest::newRow("stops for 3 s") << false << false << 35;
        QTest::newRow("unplugged") << false << true << 20;
    }

    void unsteadyMicrophone()
    {
        QFETCH(bool, blocks);
        QFETCH(bool, unplugged);
        QFETCH(int, seconds);
        const QString name = QStringLiteral("Orvix High Definition Mic II");
        QString error;
        // Of two qualifying microphones the later one is used.
        const int microphone = blocks ? devices.addBlockMicrophone(name, &error) : devices.addMicrophone(name, 440, &error);
        QVERIFY2(microphone, qPrintable(error));
        auto unplug = qScopeGuard([&] { devices.removeMicrophone(microphone); });
        const QByteArray id = QByteArrayLiteral("mic") + QByteArray::number(microphone);
        const auto plugged = [&] {
            const QList<QAudioDevice> inputs = QMediaDevices::audioInputs();
            return std::any_of(inputs.cbegin(), inputs.cend(), [&](const QAudioDevice &device) { return device.id() == id; });
        };
        QTRY_VERIFY_WITH_TIMEOUT(plugged(), 5000);

        MainWindow window;
        window.show();
        QVERIFY(window.isCameraLive());
        // Started at once, the recording meets a block microphone that has
        // not delivered anything yet.
        QTest::qWait(blocks ? 300 : 2000);
        QCOMPARE(window.chosenMicrophoneDevice().id(), id);
        setField(window, fileNameEdit, QStringLiteral("unsteady"));
        const int fedBefore = RecordingElements::silenceBuffersFed();
        window.captureVideo();
        const QString movie = window.recordingFile();
        // The live view goes on meanwhile, the hard moments included.
        FrameStatistics &liveView = window.liveView().statistics();
        liveView.takePeriod();
        int leastPerSecond = 1000;
        double oldestShownMs = -1;
        for (int second = 0; second < seconds; ++second) {
            if (unplugged && second == 10)
                QVERIFY2(devices.removeMicrophone(microphone, &error), qPrintable(error));
            else if (!blocks && !unplugged && second == 20)
                QVERIFY2(devices.pauseMicrophone(microphone, true, &error), qPrintable(error));
            else if (!blocks && !unplugged && second == 23)
                QVERIFY2(devices.pauseMicrophone(microphone, false, &error), qPrintable(error));
            QTest::qWait(1000);
            const FrameStatistics::Period period = liveView.takePeriod();
            leastPerSecond = qMin(leastPerSecond, period.received);
            // The perf log's frame age: shown frames are never from the
            // future, and a live view never shows the past.
            QVERIFY2(period.meanAgeMs >= 0, "shown frames without an age");
            oldestShownMs = qMax(oldestShownMs, period.worstAgeMs);
        }
        qInfo("the live view received at least %d frames in every second; the oldest shown was %.1f ms old",
              leastPerSecond, oldestShownMs);
        QVERIFY(oldestShownMs < 500);
        QVERIFY2(!recordingWarning(window), recordingWarning(window) ? qPrintable(recordingWarning(window)->text()) : "");
        QVERIFY(recording(window));
        QCOMPARE(window.recordingFile(), movie);
        window.captureVideo();
        QTRY_VERIFY_WITH_TIMEOUT(stopped(window), 10000);

        const MovieProbe probe = MovieProbe::probe(movie);
        qInfo("%s: %s; %d pieces of silence filled in", QTest::currentDataTag(), qPrintable(probe.describe()),
              RecordingElements::silenceBuffersFed() - fedBefore);
        // The microphones play a steady tone: every silent stretch is sound
        // lost. Silence is only where none came: before the block
        // microphone's first block, after its last one at the stop, while
        // the microphone stopped or after it was pulled.
        double silent = 0;
        QStringList stretches;
        const QList<QPair<double, double>> silences = MovieProbe::silences(movie);
        for (const auto &[from, to] : silences) {
            silent += to - from;
            stretches.append(QStringLiteral("%1-%2").arg(from, 0, 'f', 2).arg(to, 0, 'f', 2));
        }
        const QString heard = QStringLiteral("silent %1 s of %2 s of sound: %3")
                                      .arg(silent, 0, 'f', 2)
                                      .arg(probe.audioSeconds, 0, 'f', 2)
                                      .arg(stretches.join(QLatin1Char(' ')));
        qInfo("%s", qPrintable(heard));
        const double silentFrom = unplugged ? 9.5 : blocks ? probe.audioSeconds - 1.0 : 19.5;
        const double silentTo = unplugged ? probe.audioSeconds : blocks ? probe.audioSeconds : 26.5;
        for (const auto &[from, to] : silences) {
            const bool atTheStart = from < 0.1 && to <= 0.5;
            QVERIFY2(atTheStart || (from >= silentFrom && to <= silentTo + 0.1), qPrintable(heard));
        }
        QCOMPARE(RecordingElements::revivedSources(), revivedAtStart);
        verifyPlayable(probe);
        QVERIFY2(qAbs(probe.videoSeconds - seconds) <= 1.5, qPrintable(probe.describe()));
        QVERIFY2(probe.framesPerSecond() >= 29, qPrintable(probe.describe()));
    }

    // The 2-byte limit of an unknown stored value: every file is split at the
    // first look past 1026 bytes, and the badge runs on over the series.
    void splitIntoASeries()
    {
        QSettings().setValue(SettingsKeys::sizeLimit, 7);
        MainWindow window;
        QCOMPARE(window.currentSizeLimit(), 2);
        settle(window);
        setField(window, fileNameEdit, QStringLiteral("series"));
        setField(window, QStringLiteral("InformationPatientNameEdit"), QStringLiteral("P"));
        window.captureVideo();
        QVERIFY(recording(window));

        int badge = 0;
        QDeadlineTimer deadline(10000);
        while (!deadline.hasExpired()) {
            QTest::qWait(200);
            const int now = badgeSeconds(window);
            if (now < 0)
                continue; // no time shown yet
            QVERIFY2(now >= badge, qPrintable(QStringLiteral("badge went back from %1 to %2").arg(badge).arg(now)));
            badge = now;
        }
        // Stopping between two files is a stop too: no next file follows.
        QTRY_VERIFY_WITH_TIMEOUT(window.recordingFile().isEmpty() && buttonChecked(window), 10000);
        window.captureVideo();
        QVERIFY(!window.recordingTimeBadge()->isVisible());
        QVERIFY(!buttonChecked(window));
        const int stoppedWith = movies(root).size();
        QTest::qWait(2500);
        QVERIFY(stopped(window));
        QVERIFY(window.recordingFile().isEmpty());
        QCOMPARE(movies(root).size(), stoppedWith);
        QVERIFY2(failureWarning(window).isEmpty(), qPrintable(failureWarning(window)));
        // Stopped at once: the stop waits for the file's first picture, and
        // the file plays.
        window.captureVideo();
        const QString quick = window.recordingFile();
        QVERIFY(!quick.isEmpty());
        window.captureVideo();
        QTRY_VERIFY_WITH_TIMEOUT(stopped(window) && window.recordingFile().isEmpty(), 10000);
        QTest::qWait(2500);
        QVERIFY(stopped(window));
        QVERIFY(movies(root).contains(QFileInfo(quick).fileName()));
        QCOMPARE(movies(root).size(), stoppedWith + 1);

        const QStringList files = movies(root);
        QVERIFY2(files.size() >= 3, qPrintable(files.join(QLatin1Char(' '))));
        double recorded = 0;
        // For the archive, the files of one recording are one series, numbered in order.
        QSet<QString> series;
        int number = 0;
        for (const QString &file : files) {
            const QString movie = root + QStringLiteral("/Movie/") + file;
            QCOMPARE(RecordingInformation::read(movie.chopped(4) + QStringLiteral(".ini")).patient, QStringLiteral("P"));
            const CaseInformation archived = CaseInformation::read(movie.chopped(4) + QStringLiteral(".ini"));
            const bool quickOne = file == QFileInfo(quick).fileName();
            QCOMPARE(archived.instanceNumber, quickOne ? 1 : ++number);
            if (!quickOne)
                series.insert(archived.seriesInstanceUid);
            const MovieProbe probe = MovieProbe::probe(movie);
            verifyPlayable(probe);
            recorded += probe.videoSeconds;
        }
        QCOMPARE(series.size(), 1);
        QVERIFY(!series.contains(CaseInformation::read(quick.chopped(4) + QStringLiteral(".ini")).seriesInstanceUid));
        qInfo("%lld files, %.2f s in all", qlonglong(files.size()), recorded);
        QVERIFY(recorded >= 5);

        // Each file's muxer, which Qt's recorder keeps, is let go: the first
        // look marks the ones out of their bins, the second lets them go.
        RecordingElements::releaseKeptMuxers(0);
        QTest::qWait(100);
        RecordingElements::releaseKeptMuxers(0);
        QCOMPARE(RecordingElements::liveMuxers(), 0);
    }

    // A stop that waits for a new file's first picture is not lost to a
    // split that comes meanwhile, and no next file follows it.
    void stopNotLostToASplit()
    {
        MainWindow window;
        settle(window);
        setField(window, fileNameEdit, QStringLiteral("race"));
        window.captureVideo();
        QVERIFY(recording(window));
        const QString first = window.recordingFile();
        window.captureVideo();
        // The size watcher's split, arriving while the stop waits.
        window.splitVideoFile();
        QTRY_VERIFY_WITH_TIMEOUT(stopped(window), 10000);
        // A split's next file would have begun a second after it.
        QTest::qWait(3000);
        QVERIFY(stopped(window));
        QVERIFY(!buttonChecked(window));
        QVERIFY(!window.recordingTimeBadge()->isVisible());
        QCOMPARE(movies(root), QStringList(QFileInfo(first).fileName()));
        verifyPlayable(MovieProbe::probe(first));
    }

    // The end of a split's one-second pause, already queued when the user
    // stops, finds the recording over and starts no file.
    void queuedNextFileAfterAStop()
    {
        QSettings().setValue(SettingsKeys::sizeLimit, 7);
        MainWindow window;
        settle(window);
        setField(window, fileNameEdit, QStringLiteral("queued"));
        window.captureVideo();
        // The file split off has stopped; the pause before the next runs.
        QTRY_VERIFY_WITH_TIMEOUT(stopped(window) && buttonChecked(window), 10000);
        // Busy past the pause: its end is queued, not yet delivered.
        QThread::msleep(1500);
        window.captureVideo();
        QVERIFY(!buttonChecked(window));
        const int stoppedWith = movies(root).size();
        QTest::qWait(3000);
        QVERIFY(stopped(window));
        QVERIFY(window.recordingFile().isEmpty());
        QCOMPARE(movies(root).size(), stoppedWith);
    }

    // The badge shows one running time over the files of a split recording.
    void badgeRunsOnOverASplit()
    {
        MainWindow window;
        settle(window);
        setField(window, fileNameEdit, QStringLiteral("long"));
        window.captureVideo();
        QTest::qWait(1500);
        // As if the first file had run for 59:30 when it was split.
        window.updateRecordTime((59 * 60 + 30) * 1000);
        window.splitVideoFile();
        QTRY_VERIFY_WITH_TIMEOUT(window.recordingFile().contains(QStringLiteral("long_")), 5000);
        QVERIFY(recording(window));
        QTRY_VERIFY_WITH_TIMEOUT(badgeSeconds(window) >= 59 * 60 + 32, 5000);
        QVERIFY2(badgeSeconds(window) <= 59 * 60 + 35, qPrintable(window.recordingTimeBadge()->text()));
        QCOMPARE(movies(root).size(), 2);

        window.captureVideo();
        QTRY_VERIFY_WITH_TIMEOUT(stopped(window), 10000);

        // A new recording starts from nothing, and never writes over an
        // earlier movie of the same name and second.
        const QDateTime now = QDateTime::currentDateTime();
        QStringList taken;
        for (int second = 0; second < 3; ++second) {
            taken << root + QStringLiteral("/Movie/long") + now.addSecs(second).toString(QStringLiteral("_yyMMdd_hhmmss.mp4"));
            QFile earlier(taken.last());
            QVERIFY(earlier.open(QIODevice::WriteOnly));
            earlier.write("earlier");
        }
        window.captureVideo();
        const QString next = window.recordingFile();
        QVERIFY2(!taken.contains(next), qPrintable(next));
        QTRY_VERIFY_WITH_TIMEOUT(badgeSeconds(window) == 1, 3000);
        window.captureVideo();
        QTRY_VERIFY_WITH_TIMEOUT(stopped(window), 10000);
        for (const QString &path : std::as_const(taken)) {
            QFile earlier(path);
            QVERIFY(earlier.open(QIODevice::ReadOnly));
            QCOMPARE(earlier.readAll(), QByteArray("earlier"));
        }
        verifyPlayable(MovieProbe::probe(next));
    }

    // Killed, or its camera pulled, mid-recording: what was written plays.
    void interruptedRecordingPlays_data()
    {
        QTest::addColumn<bool>("kill");
        QTest::newRow("SIGKILL") << true;
        QTest::newRow("camera pulled") << false;
    }

    void interruptedRecordingPlays()
    {
        QFETCH(bool, kill);
        const qint64 runMsec = 6000;
        QString movie;
        if (kill) {
            QProcess program;
            program.setProcessEnvironment(devices.environment());
            program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
            program.start(QStringLiteral(ORVIX_RECORDING_HELPER), { QStringLiteral("killed") });
            QVERIFY(program.waitForStarted(5000));
            QTRY_VERIFY_WITH_TIMEOUT(program.canReadLine() || program.state() != QProcess::Running, 20000);
            const QString line = QString::fromLocal8Bit(program.readLine()).trimmed();
            QVERIFY2(line.startsWith(QStringLiteral("recording ")), qPrintable(line));
            movie = line.mid(10);
            QTest::qWait(runMsec);
            ::kill(pid_t(program.processId()), SIGKILL);
            QVERIFY(program.waitForFinished(5000));
            // Its log holds the designed lines of a recording, in order, up to
            // the moment it was killed: whole lines, the last of them written
            // while it recorded.
            const QString log = devices.home() + QStringLiteral("/.local/state/Kelvane/Orvix/orvix.log");
            const QStringList lines = LogCheck::lines(log);
            const QString missing = LogCheck::missingInOrder(
                    lines, { QStringLiteral("D [main] orvix.capture: discoverAvailableCameras:  \"Orvix Full HD Camera\""),
                             QStringLiteral("D [main] orvix.recording: metaDataString: \"/Kill, Test//\""),
                             QStringLiteral("orvix.recording: encoder threads at nice") });
            QVERIFY2(missing.isEmpty(), qPrintable(missing));
            QFile whole(log);
            QVERIFY(whole.open(QIODevice::ReadOnly) && whole.readAll().endsWith('\n'));
        } else {
            MainWindow window;
            settle(window);
            setField(window, fileNameEdit, QStringLiteral("pulled"));
            window.captureVideo();
            movie = window.recordingFile();
            QTest::qWait(runMsec);
            // Split as if the first file had run for 59:30: the time goes on
            // from there in the second.
            window.updateRecordTime((59 * 60 + 30) * 1000);
            window.splitVideoFile();
            QTRY_VERIFY_WITH_TIMEOUT(!window.recordingFile().isEmpty(), 5000);
            const QString second = window.recordingFile();
            QTRY_VERIFY_WITH_TIMEOUT(badgeSeconds(window) >= 59 * 60 + 31, 5000);
            QTest::qWait(1500);
            devices.setCameras({});
            QTRY_VERIFY_WITH_TIMEOUT(!window.isCameraLive(), 6000);
            QVERIFY(!window.currentRecorder());
            // Said, with the file kept; the time shown no more.
            QTRY_VERIFY_WITH_TIMEOUT(recordingWarning(window), 2000);
            const QString notice = recordingWarning(window)->text();
            QVERIFY2(notice.contains(QStringLiteral("disconnected")) && notice.contains(QFileInfo(second).fileName()),
                     qPrintable(notice));
            QVERIFY(!window.recordingTimeBadge()->isVisible());
            QVERIFY(!buttonChecked(window));
            recordingWarning(window)->close();
            verifyPlayable(MovieProbe::probe(second));

            // The next recording's time starts from nothing.
            devices.setCameras({ cameraLine() });
            QTRY_VERIFY_WITH_TIMEOUT(window.isCameraLive(), 6000);
            settle(window);
            window.captureVideo();
            QVERIFY(recording(window));
            QTRY_VERIFY_WITH_TIMEOUT(badgeSeconds(window) >= 1, 5000);
            QVERIFY2(badgeSeconds(window) < 10, qPrintable(window.recordingTimeBadge()->text()));
            window.captureVideo();
            QTRY_VERIFY_WITH_TIMEOUT(stopped(window), 10000);
        }
        const MovieProbe probe = MovieProbe::probe(movie);
        qInfo("%s %.1f s into the recording: %s", QTest::currentDataTag(), runMsec / 1000.0, qPrintable(probe.describe()));
        QVERIFY2(probe.opened && probe.decodeErrors.isEmpty(), qPrintable(probe.describe()));
        QCOMPARE(probe.pixelFormat, QStringLiteral("yuv420p"));
        QVERIFY2(probe.videoSeconds >= 4, qPrintable(probe.describe()));
    }

    // A recording that cannot be written, or not where the browser looks,
    // is said so within 4 s; what cannot be written leaves the window ready
    // for the next try; names the file system takes record as they are.
    void fileNamesAndFolders_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("deleteRoot");
        QTest::addColumn<QString>("warning"); // empty: none
        QTest::addColumn<bool>("records");

        QTest::newRow("slash") << "left/right" << false << "not into the Movie folder" << true;
        QTest::newRow("root deleted") << "case" << true << "did not exist" << true;
        QTest::newRow("300 characters") << QString(300, QLatin1Char('x')) << false << "too long" << false;
        QTest::newRow("spaces only") << "   " << false << QString() << true;
        QTest::newRow("not Latin") << QStringLiteral("Операция 手術 ενδοσκόπηση") << false << QString() << true;
    }

    void fileNamesAndFolders()
    {
        QFETCH(QString, name);
        QFETCH(bool, deleteRoot);
        QFETCH(QString, warning);
        QFETCH(bool, records);
        MainWindow window;
        settle(window);
        setField(window, fileNameEdit, name);
        if (deleteRoot)
            QVERIFY(QDir(root).removeRecursively());

        window.captureVideo();
        QString movie = window.recordingFile();
        QCOMPARE(recording(window), records);
        if (!records)
            movie = root + QStringLiteral("/Movie/") + name;
        if (!warning.isEmpty()) {
            QTRY_VERIFY_WITH_TIMEOUT(recordingWarning(window), guardWait);
            const QString text = recordingWarning(window)->text();
            QVERIFY2(text.contains(warning), qPrintable(text));
            // A refusal names the file.
            QVERIFY2(records || text.contains(QFileInfo(movie).fileName()), qPrintable(text));
            recordingWarning(window)->close();
        }
        if (!records) {
            QVERIFY(!window.recordingTimeBadge()->isVisible());
            QVERIFY(!window.findChild<QPushButton *>(QStringLiteral("VideoCaptureButton"))->isChecked());
            QVERIFY(stopped(window));
            QVERIFY(movies(root).isEmpty());
            // Put right, the next press records.
            setField(window, fileNameEdit, QStringLiteral("retry"));
            window.captureVideo();
            movie = window.recordingFile();
        }
        QTest::qWait(guardWait);
        QVERIFY2(!recordingWarning(window), recordingWarning(window) ? qPrintable(recordingWarning(window)->text()) : "");
        QVERIFY(recording(window));
        window.captureVideo();
        QTRY_VERIFY_WITH_TIMEOUT(stopped(window), 10000);
        verifyPlayable(MovieProbe::probe(movie));
        QVERIFY(QFileInfo::exists(movie.chopped(4) + QStringLiteral(".ini")));
    }

    // On a small file system: warned at once, stopped with a playable file
    // before it is full, and recording again once there is room.
    void fullDisk()
    {
        const QString mountPoint = root + QStringLiteral("/disk");
        if (!mountSmallDisk(mountPoint, QStringLiteral("64m"))) {
            if (::geteuid() == 0)
                QFAIL("cannot mount a small file system, though running as root");
            QSKIP("cannot mount a small file system here (needs root)");
        }
        auto unmountDisk = qScopeGuard([&] { unmount(mountPoint); });
        QDir().mkpath(mountPoint + QStringLiteral("/Movie"));
        QSettings().setValue(SettingsKeys::storageLocation, mountPoint);
        // About 10 s of recording before the guard's reserve.
        QFile filler(mountPoint + QStringLiteral("/filler"));
        QVERIFY(filler.open(QIODevice::WriteOnly));
        QVERIFY(filler.write(QByteArray(24 * 1024 * 1024, 'x')) > 0);
        filler.close();

        MainWindow window;
        settle(window);
        setField(window, fileNameEdit, QStringLiteral("full"));
        window.captureVideo();
        const QString movie = window.recordingFile();
        QTRY_VERIFY_WITH_TIMEOUT(recordingWarning(window), 2000);
        QVERIFY2(recordingWarning(window)->text().contains(QStringLiteral("minutes")), qPrintable(recordingWarning(window)->text()));
        QVERIFY(recording(window));
        recordingWarning(window)->close();

        QTRY_VERIFY_WITH_TIMEOUT(recordingWarning(window), 60000);
        QVERIFY2(recordingWarning(window)->text().contains(QStringLiteral("almost full")), qPrintable(recordingWarning(window)->text()));
        QTRY_VERIFY_WITH_TIMEOUT(stopped(window), 10000);
        const MovieProbe probe = MovieProbe::probe(movie);
        qInfo("stopped on a full disk: %s", qPrintable(probe.describe()));
        verifyPlayable(probe);
        QVERIFY(probe.videoSeconds >= 3);
        recordingWarning(window)->close();

        QVERIFY(QFile::remove(mountPoint + QStringLiteral("/filler")));
        window.captureVideo();
        QVERIFY(recording(window));
        const QString next = window.recordingFile();
        QTest::qWait(guardWait);
        QVERIFY(recording(window));
        window.captureVideo();
        QTRY_VERIFY_WITH_TIMEOUT(stopped(window), 10000);
        verifyPlayable(MovieProbe::probe(next));
        // The first file was left as it was.
        QCOMPARE(MovieProbe::probe(movie).frames, probe.frames);
    }

    void snapshot_data()
    {
        QTest::addColumn<QString>("trouble");
        QTest::addColumn<QString>("reason"); // empty: the picture is saved
        QTest::newRow("saved") << QString() << QString();
        QTest::newRow("Image folder deleted") << "deleted" << "does not exist";
        QTest::newRow("root read-only") << "read-only" << "cannot be written to";
        QTest::newRow("disk full") << "full" << "disk is full";
    }

    // A snapshot is saved, or the user is told within a few seconds that it
    // was not, and why; the button is ready again either way.
    void snapshot()
    {
        QFETCH(QString, trouble);
        QFETCH(QString, reason);
        if (trouble.isEmpty()) {
            devices.setCameras({});
            QTRY_VERIFY_WITH_TIMEOUT(QMediaDevices::videoInputs().isEmpty(), 5000);
            MainWindow window;
            QTest::ignoreMessage(QtWarningMsg, "QCameraImageCapture is not ready!");
            window.captureStillImage();
            devices.setCameras({ cameraLine() });
            QTRY_COMPARE_WITH_TIMEOUT(QMediaDevices::videoInputs().size(), 1, 5000);
        }
        QString images = root + QStringLiteral("/Image");
        QString mountPoint;
        auto unmountDisk = qScopeGuard([&] {
            if (!mountPoint.isEmpty())
                unmount(mountPoint);
        });
        if (!trouble.isEmpty() && trouble != QLatin1String("deleted")) {
            mountPoint = root + QStringLiteral("/disk");
            if (!mountSmallDisk(mountPoint, QStringLiteral("2m"))) {
                mountPoint.clear();
                if (::geteuid() == 0)
                    QFAIL("cannot mount a small file system, though running as root");
                QSKIP("cannot mount a small file system here (needs root)");
            }
            images = mountPoint + QStringLiteral("/Image");
            QVERIFY(QDir().mkpath(images));
            QSettings().setValue(SettingsKeys::storageLocation, mountPoint);
            if (trouble == QLatin1String("read-only")) {
                QCOMPARE(QProcess::execute(QStringLiteral("mount"), { QStringLiteral("-o"), QStringLiteral("remount,ro"), mountPoint }), 0);
            } else {
                QFile filler(mountPoint + QStringLiteral("/filler"));
                QVERIFY(filler.open(QIODevice::WriteOnly));
                while (filler.write(QByteArray(64 * 1024, 'x')) > 0) { }
            }
        }

        // Held so that the end can destroy it and look at what stays.
        std::optional<MainWindow> window(std::in_place);
        auto *button = window->findChild<QPushButton *>(QStringLiteral("ImageCaptureButton"));
        QTRY_VERIFY_WITH_TIMEOUT(button->isEnabled(), 5000);
        // Not in the first second of the camera: the picture must show it.
        QTest::qWait(1500);
        // Deleted in the file manager while the program runs.
        if (trouble == QLatin1String("deleted"))
            QVERIFY(QDir(images).removeRecursively());
        const QDateTime before = QDateTime::currentDateTime();
        window->captureStillImage();
        QVERIFY(!button->isEnabled());
        QTRY_VERIFY_WITH_TIMEOUT(button->isEnabled(), 10000);

        if (!reason.isEmpty()) {
            QTRY_VERIFY_WITH_TIMEOUT(recordingWarning(*window), 4000);
            const QString text = recordingWarning(*window)->text();
            QVERIFY2(text.contains(QStringLiteral("was not saved")) && text.contains(reason)
                             && text.contains(QDir::toNativeSeparators(images)),
                     qPrintable(text));
            return;
        }
        QTest::qWait(3000);
        QVERIFY2(!recordingWarning(*window), recordingWarning(*window) ? qPrintable(recordingWarning(*window)->text()) : "");
        const QStringList saved = QDir(images).entryList({ QStringLiteral("*.jpg") }, QDir::Files);
        QCOMPARE(saved.size(), 1);
        QVERIFY2(saved.first() == before.toString(QStringLiteral("yyMMdd_hhmmss.jpg"))
                         || saved.first() == before.addSecs(1).toString(QStringLiteral("yyMMdd_hhmmss.jpg")),
                 qPrintable(saved.first()));
        const QImage picture(images + QLatin1Char('/') + saved.first());
        QCOMPARE(picture.size(), QSize(1920, 1080));
        QVERIFY(picture.pixel(960, 270) != picture.pixel(10, 1070));

        // Qt made the picture on that branch's streaming thread, which now
        // keeps Qt's converter (on an X display, an OpenGL context). Once the
        // window is gone the thread must not end: the display goes soon after
        // it, as the program quits.
        const QStringList converting = snapshotThreads();
#ifdef Q_OS_LINUX
        QVERIFY(!converting.isEmpty());
#endif
        window.reset();
        QTest::qWait(1000);
        const QStringList alive = snapshotThreads();
        for (const QString &id : converting)
            QVERIFY2(alive.contains(id), qPrintable(QStringLiteral("thread %1 ended after the window").arg(id)));
    }

private:
    VirtualDevices &devices;
    QString root;
};

ORVIX_TEST_MAIN(tst_Recording)
#include "tst_recording.moc"
