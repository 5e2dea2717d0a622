// Recording for real: movies from the virtual camera and microphone through
// Qt's recorder, checked with ffprobe and ffmpeg; the information files;
// splitting; snapshots; and the failures an operating room meets: a killed
// program, a pulled camera, a full disk, a bad file name, a vanished folder.
#include <csignal>

#include <QDir>
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

int badgeSeconds(MainWindow &window)
{
    const QStringList parts = window.recordingTimeBadge()->text().split(QLatin1Char(':'));
    return parts.size() == 3 ? parts[0].toInt() * 3600 + parts[1].toInt() * 60 + parts[2].toInt() : -1;
}

// Plays everywhere: H.264 4:2:0 in High or Main profile, with its sound as
// long as its picture, decoded from end to end without a complaint.
void verifyPlayable(const MovieProbe &movie)
{
    QVERIFY2(movie.opened, qPrintable(movie.describe()));
    QCOMPARE(movie.videoCodec, QStringLiteral("h264"));
    QVERIFY2(movie.profile == QLatin1String("High") || movie.profile == QLatin1String("Main"), qPrintable(movie.describe()));
    QCOMPARE(movie.pixelFormat, QStringLiteral("yuv420p"));
    QCOMPARE(QSize(movie.width, movie.height), QSize(1920, 1080));
    QCOMPARE(movie.audioCodec, QStringLiteral("mp3"));
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
        QTest::qWait(6000);
        const int badgeAtStop = badgeSeconds(window);
        QVERIFY2(badgeAtStop >= 9 && badgeAtStop <= 11, qPrintable(window.recordingTimeBadge()->text()));

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
        qInfo("recorded 4 s + 6 s around a 3 s pause: %s", qPrintable(probe.describe()));
        // The pause is left out of the file.
        QVERIFY2(qAbs(probe.videoSeconds - 10) <= 1, qPrintable(probe.describe()));
        QVERIFY2(probe.framesPerSecond() >= 29, qPrintable(probe.describe()));
    }

private:
    VirtualDevices &devices;
    QString root;
};

ORVIX_TEST_MAIN(tst_Recording)
#include "tst_recording.moc"
