// Recording for real: movies from the virtual camera and microphone through
// Qt's recorder, checked with ffprobe and ffmpeg; the information files;
// splitting; snapshots; and the failures an operating room meets: a killed
// program, a pulled camera, a full disk, a bad file name, a vanished folder.
#include <csignal>

#include <QDeadlineTimer>
#include <QDir>
#include <QProcess>
#include <QScopeGuard>
#include <QFileInfo>
#include <QLineEdit>
#include <QMediaDevices>
#include <QMediaMetaData>
#include <QMessageBox>
#include <QPushButton>
#include <QRegularExpression>
#include <QSettings>
#include <QTextEdit>

#include "app/settingskeys.h"
#include "capture/recordingelements.h"
#include "mainwindow/mainwindow.h"
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
// long as its picture, decoded from end to end without a complaint.
void verifyPlayable(const MovieProbe &movie)
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
        QVERIFY2(qAbs(movie.audioSeconds - movie.videoSeconds) <= 0.3, qPrintable(movie.describe()));
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

        QTest::qWait(4000);
        window.pauseCaptureVideo();
        QCOMPARE(window.currentRecorder()->recorderState(), QMediaRecorder::PausedState);
        const int badgeAtPause = badgeSeconds(window);
        QTest::qWait(3000);
        QCOMPARE(badgeSeconds(window), badgeAtPause);
        // Record while paused resumes.
        window.captureVideo();
        QVERIFY(recording(window));
        // A minute in all: long enough to show the frame rate holds.
        QTest::qWait(56000);
        const int badgeAtStop = badgeSeconds(window);
        QVERIFY2(badgeAtStop >= 59 && badgeAtStop <= 61, qPrintable(window.recordingTimeBadge()->text()));

        window.captureVideo();
        QVERIFY(!window.recordingTimeBadge()->isVisible());
        QVERIFY(!button->isChecked());
        QTRY_VERIFY_WITH_TIMEOUT(stopped(window), 10000);
        QVERIFY(!recordingWarning(window));

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
        qInfo("recorded 4 s + 56 s around a 3 s pause: %s", qPrintable(probe.describe()));
        // The pause is left out of the file.
        QVERIFY2(qAbs(probe.videoSeconds - 60) <= 1, qPrintable(probe.describe()));
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
        // Stopping between two files is a stop too.
        window.captureVideo();
        QVERIFY(!window.recordingTimeBadge()->isVisible());
        QTRY_VERIFY_WITH_TIMEOUT(stopped(window), 10000);
        QTest::qWait(2500);
        QVERIFY(stopped(window));
        QVERIFY(!recordingWarning(window));
        // Stopped at once: the file still holds enough to play.
        window.captureVideo();
        window.captureVideo();
        QTRY_VERIFY_WITH_TIMEOUT(stopped(window), 10000);

        const QStringList files = movies(root);
        QVERIFY2(files.size() >= 3, qPrintable(files.join(QLatin1Char(' '))));
        double recorded = 0;
        for (const QString &file : files) {
            const QString movie = root + QStringLiteral("/Movie/") + file;
            QCOMPARE(RecordingInformation::read(movie.chopped(4) + QStringLiteral(".ini")).patient, QStringLiteral("P"));
            const MovieProbe probe = MovieProbe::probe(movie);
            verifyPlayable(probe);
            recorded += probe.videoSeconds;
        }
        qInfo("%lld files, %.2f s in all", qlonglong(files.size()), recorded);
        QVERIFY(recorded >= 5);

        // Each file's muxer, which Qt's recorder keeps, is let go: the first
        // look marks the ones out of their bins, the second lets them go.
        RecordingElements::releaseKeptMuxers(0);
        QTest::qWait(100);
        RecordingElements::releaseKeptMuxers(0);
        QCOMPARE(RecordingElements::liveMuxers(), 0);
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
        } else {
            MainWindow window;
            settle(window);
            setField(window, fileNameEdit, QStringLiteral("pulled"));
            window.captureVideo();
            movie = window.recordingFile();
            QTest::qWait(runMsec);
            devices.setCameras({});
            QTRY_VERIFY_WITH_TIMEOUT(!window.isCameraLive(), 6000);
            QVERIFY(!window.currentRecorder());
            devices.setCameras({ cameraLine() });
            QTRY_VERIFY_WITH_TIMEOUT(window.isCameraLive(), 6000);
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
        QDir().mkpath(mountPoint);
        if (QProcess::execute(QStringLiteral("mount"), { QStringLiteral("-t"), QStringLiteral("tmpfs"), QStringLiteral("-o"),
                                                          QStringLiteral("size=64m"), QStringLiteral("tmpfs"), mountPoint })
            != 0)
            QSKIP("cannot mount a small file system here (needs root)");
        auto unmount = qScopeGuard([&] { QProcess::execute(QStringLiteral("umount"), { QStringLiteral("-l"), mountPoint }); });
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

    void snapshot()
    {
        {
            devices.setCameras({});
            QTRY_VERIFY_WITH_TIMEOUT(QMediaDevices::videoInputs().isEmpty(), 5000);
            MainWindow window;
            QTest::ignoreMessage(QtWarningMsg, "QCameraImageCapture is not ready!");
            window.captureStillImage();
            devices.setCameras({ cameraLine() });
            QTRY_COMPARE_WITH_TIMEOUT(QMediaDevices::videoInputs().size(), 1, 5000);
        }
        MainWindow window;
        auto *button = window.findChild<QPushButton *>(QStringLiteral("ImageCaptureButton"));
        QTRY_VERIFY_WITH_TIMEOUT(button->isEnabled(), 5000);
        // Not in the first second of the camera: the picture must show it.
        QTest::qWait(1500);
        const QDateTime before = QDateTime::currentDateTime();
        window.captureStillImage();
        QVERIFY(!button->isEnabled());
        QTRY_VERIFY_WITH_TIMEOUT(button->isEnabled(), 10000);
        const QStringList images = QDir(root + QStringLiteral("/Image")).entryList(QDir::Files);
        QCOMPARE(images.size(), 1);
        QVERIFY2(images.first() == before.toString(QStringLiteral("yyMMdd_hhmmss.jpg"))
                         || images.first() == before.addSecs(1).toString(QStringLiteral("yyMMdd_hhmmss.jpg")),
                 qPrintable(images.first()));
        const QImage picture(root + QStringLiteral("/Image/") + images.first());
        QCOMPARE(picture.size(), QSize(1920, 1080));
        QVERIFY(picture.pixel(960, 270) != picture.pixel(10, 1070));
    }

private:
    VirtualDevices &devices;
    QString root;
};

ORVIX_TEST_MAIN(tst_Recording)
#include "tst_recording.moc"
