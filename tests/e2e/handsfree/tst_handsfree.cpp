// Hands-free control through the real window on an X server: a foot
// switch's keys learned in its dialog and pressed through the X server.
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QMediaDevices>
#include <QMediaRecorder>
#include <QProcess>
#include <QPushButton>
#include <QSettings>

#include "app/settingskeys.h"
#include "mainwindow/mainwindow.h"
#include "movieprobe.h"
#include "orvixtest.h"
#include "widgets/footswitchdialog.h"

namespace {
// A key typed through the X server into the window that has the focus,
// as a USB foot switch types it.
bool typeKey(const QString &key)
{
    return QProcess::execute(QStringLiteral("xdotool"), { QStringLiteral("key"), QStringLiteral("--clearmodifiers"), key }) == 0;
}

QMediaRecorder::RecorderState recorderState(MainWindow &window)
{
    return window.currentRecorder() ? window.currentRecorder()->recorderState() : QMediaRecorder::StoppedState;
}
}

class tst_HandsFree : public QObject
{
    Q_OBJECT

public:
    explicit tst_HandsFree(VirtualDevices &devices) : devices(devices) { }

private slots:
    void initTestCase()
    {
        QString error;
        QVERIFY2(devices.startAudio(&error), qPrintable(error));
        QVERIFY2(devices.addMicrophone(QStringLiteral("Orvix High Definition Mic II"), 440, &error), qPrintable(error));
        devices.setCameras({ VirtualDevices::fullHdCamera() });
        QTRY_COMPARE_WITH_TIMEOUT(QMediaDevices::videoInputs().size(), 1, 5000);
        root = devices.makeStorageRoot(QStringLiteral("pedals"));
    }

    // Learned by pressing the pedals, each pedal does its one thing; typed
    // into a field, the same key is a letter.
    void footSwitch()
    {
        MainWindow window;
        window.resize(1280, 720);
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QVERIFY(window.isCameraLive());

        for (QAction *action : window.findChildren<QAction *>()) {
            if (action->text() == QLatin1String("Foot Switch"))
                action->trigger();
        }
        auto *dialog = window.findChild<FootSwitchDialog *>();
        QVERIFY(dialog);
        QVERIFY(QTest::qWaitForWindowActive(dialog));
        const QStringList pedals { "Snapshot", "Record", "Stop", "PauseResume" };
        const QStringList keys { "a", "b", "c", "d" };
        for (int pedal = 0; pedal < pedals.size(); ++pedal) {
            QTest::mouseClick(dialog->findChild<QPushButton *>(QStringLiteral("FootSwitchLearn") + pedals[pedal]), Qt::LeftButton);
            QCOMPARE(dialog->learning(), pedal);
            // A key the window already uses is refused, with why.
            if (pedal == 1) {
                QVERIFY(typeKey(QStringLiteral("F5")));
                QTRY_VERIFY(dialog->findChild<QLabel *>(QStringLiteral("FootSwitchHint"))->text().contains(QLatin1String("Record Start")));
                QCOMPARE(dialog->learning(), pedal);
            }
            QVERIFY(typeKey(keys[pedal]));
            QTRY_COMPARE(dialog->learning(), -1);
            QCOMPARE(dialog->findChild<QLabel *>(QStringLiteral("FootSwitchKey") + pedals[pedal])->text(), keys[pedal].toUpper());
        }
        dialog->accept();
        QTRY_VERIFY(!window.findChild<FootSwitchDialog *>());
        QCOMPARE(QSettings().value(SettingsKeys::footSwitchGroup + QStringLiteral("/record")).toString(), QStringLiteral("B"));
        // No window manager here gives the focus back.
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));

        auto *nameEdit = window.findChild<QLineEdit *>(QStringLiteral("InformationFileNameEdit"));
        nameEdit->setText(QStringLiteral("pedal"));
        window.findChild<QPushButton *>(QStringLiteral("VideoCaptureButton"))->setFocus();
        const auto files = [&](const QString &folder, const QString &pattern) {
            return QDir(root + folder).entryList({ pattern }, QDir::Files);
        };

        QVERIFY(typeKey(QStringLiteral("a")));
        QTRY_COMPARE_WITH_TIMEOUT(files(QStringLiteral("Image"), QStringLiteral("*.jpg")).size(), 1, 5000);

        QVERIFY(typeKey(QStringLiteral("b")));
        QTRY_COMPARE_WITH_TIMEOUT(recorderState(window), QMediaRecorder::RecordingState, 5000);
        // Record again does not stop it.
        QTest::qWait(2000);
        QVERIFY(typeKey(QStringLiteral("b")));
        QTest::qWait(500);
        QCOMPARE(recorderState(window), QMediaRecorder::RecordingState);
        QVERIFY(typeKey(QStringLiteral("d")));
        QTRY_COMPARE_WITH_TIMEOUT(recorderState(window), QMediaRecorder::PausedState, 5000);
        QTest::qWait(1500);
        QVERIFY(typeKey(QStringLiteral("d")));
        QTRY_COMPARE_WITH_TIMEOUT(recorderState(window), QMediaRecorder::RecordingState, 5000);
        QTest::qWait(2000);
        // Stop stops from a pause too.
        QVERIFY(typeKey(QStringLiteral("d")));
        QTRY_COMPARE_WITH_TIMEOUT(recorderState(window), QMediaRecorder::PausedState, 5000);
        QVERIFY(typeKey(QStringLiteral("c")));
        QTRY_COMPARE_WITH_TIMEOUT(recorderState(window), QMediaRecorder::StoppedState, 10000);
        const QStringList movies = files(QStringLiteral("Movie"), QStringLiteral("pedal_*.mp4"));
        QCOMPARE(movies.size(), 1);
        const MovieProbe movie = MovieProbe::probe(root + QStringLiteral("Movie/") + movies.first());
        // 2.5 s, then 2 s more after the pause: the pauses are not in it.
        QVERIFY2(movie.opened && movie.decodeErrors.isEmpty() && movie.videoSeconds > 3.5 && movie.videoSeconds < 6,
                 qPrintable(movie.describe()));

        // In the file name field the pedal's key types its letter.
        nameEdit->setFocus();
        nameEdit->end(false);
        QVERIFY(typeKey(QStringLiteral("b")));
        QTRY_COMPARE(nameEdit->text(), QStringLiteral("pedalb"));
        QTest::qWait(1000);
        QCOMPARE(recorderState(window), QMediaRecorder::StoppedState);
        QCOMPARE(files(QStringLiteral("Movie"), QStringLiteral("*.mp4")).size(), 1);
        // The designed keys keep working: F7 takes a snapshot.
        window.findChild<QPushButton *>(QStringLiteral("VideoCaptureButton"))->setFocus();
        QTest::qWait(1100); // snapshots are named by the second
        QVERIFY(typeKey(QStringLiteral("F7")));
        QTRY_COMPARE_WITH_TIMEOUT(files(QStringLiteral("Image"), QStringLiteral("*.jpg")).size(), 2, 5000);
    }

private:
    VirtualDevices &devices;
    QString root;
};

ORVIX_TEST_MAIN(tst_HandsFree)
#include "tst_handsfree.moc"
