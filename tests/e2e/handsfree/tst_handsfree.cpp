// Hands-free control through the real window on an X server: a foot
// switch's keys learned in its dialog and pressed through the X server, and
// the camera head's button read from its own input device (here a FIFO in
// a copied sysfs tree, found as the real device is).
#include <unistd.h>

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QListView>
#include <QSlider>
#include <QStackedWidget>
#include <QLabel>
#include <QLineEdit>
#include <QMediaDevices>
#include <QMediaRecorder>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QScopeGuard>
#include <QSettings>

#include "app/settingskeys.h"
#include "capture/camerabutton.h"
#include "mainwindow/mainwindow.h"
#include "layoutcheck.h"
#include "movieprobe.h"
#include "orvixtest.h"
#include "storage/orvixstoragemodel.h"
#include "widgets/footswitchdialog.h"
#include "widgets/orvixmediaplayerwidget.h"

namespace {
// A link as sysfs has them: relative to where it is.
bool link(const QString &target, const QString &path)
{
    return ::symlink(QFile::encodeName(target).constData(), QFile::encodeName(path).constData()) == 0;
}

// A sysfs and /dev tree as Linux has them for a UVC camera (video0 on USB
// device 1-1, its button event7), another camera's button (event9, 1-2)
// and a keyboard (event3). The event nodes are FIFOs.
bool makeDeviceTree(const QString &tree)
{
    const QString usb = QStringLiteral("devices/pci0000:00/0000:00:14.0/usb1/");
    const QString keyboard = QStringLiteral("devices/platform/i8042/serio0/input/input3");
    // KEY_CAMERA is 212: bit 20 of the fourth 64-bit word.
    const QByteArray cameraKey = "100000 0 0 0\n";
    struct Node { QString input; QString event; QByteArray keys; };
    const Node nodes[] = { { usb + QStringLiteral("1-1/1-1:1.0/input/input7"), QStringLiteral("event7"), cameraKey },
                           { usb + QStringLiteral("1-2/1-2:1.0/input/input9"), QStringLiteral("event9"), cameraKey },
                           { keyboard, QStringLiteral("event3"), "7 ff800000 0 0 0 0 fffffffffffffffe\n" } };
    QDir root(tree);
    root.mkpath(QStringLiteral("sys/class/input"));
    root.mkpath(QStringLiteral("sys/class/video4linux"));
    root.mkpath(QStringLiteral("dev/input"));
    for (const Node &node : nodes) {
        root.mkpath(QStringLiteral("sys/") + node.input + QStringLiteral("/capabilities"));
        root.mkpath(QStringLiteral("sys/") + node.input + QLatin1Char('/') + node.event);
        QFile keys(tree + QStringLiteral("/sys/") + node.input + QStringLiteral("/capabilities/key"));
        if (!keys.open(QIODevice::WriteOnly) || keys.write(node.keys) < 0)
            return false;
        if (!link(QStringLiteral("../../") + node.input + QLatin1Char('/') + node.event,
                  tree + QStringLiteral("/sys/class/input/") + node.event))
            return false;
        if (QProcess::execute(QStringLiteral("mkfifo"), { tree + QStringLiteral("/dev/input/") + node.event }) != 0)
            return false;
    }
    const QString video = usb + QStringLiteral("1-1/1-1:1.0/video4linux/video0");
    root.mkpath(QStringLiteral("sys/") + video);
    if (!link(QStringLiteral("../../../1-1:1.0"), tree + QStringLiteral("/sys/") + video + QStringLiteral("/device"))
        || !link(QStringLiteral("../../") + video, tree + QStringLiteral("/sys/class/video4linux/video0")))
        return false;
    QFile name(tree + QStringLiteral("/sys/") + video + QStringLiteral("/name"));
    return name.open(QIODevice::WriteOnly) && name.write("Orvix Full HD Camera\n") > 0;
}

// What the kernel hands out for a key: the key's event, then a report.
QByteArray keyEvent(quint16 code, qint32 value)
{
    struct Event { qint64 seconds; qint64 microseconds; quint16 type; quint16 code; qint32 value; };
    const Event events[2] = { { 0, 0, 1 /* EV_KEY */, code, value }, { 0, 0, 0 /* EV_SYN */, 0, 0 } };
    return QByteArray(reinterpret_cast<const char *>(events), sizeof events);
}

// A key typed through the X server into the window that has the focus,
// as a USB foot switch types it.
bool typeKey(const QString &key)
{
    return QProcess::execute(QStringLiteral("xdotool"), { QStringLiteral("key"), QStringLiteral("--clearmodifiers"), key }) == 0;
}

// The window as a screen reader finds it: AT-SPI's tree of this process.
QJsonArray accessibleTree()
{
    QProcess walk;
    walk.start(QStringLiteral("/usr/bin/python3"), { QStringLiteral(ORVIX_ATSPI_WALK), QString::number(getpid()) });
    // The window answers the walk's questions: its loop must run meanwhile.
    if (!QTest::qWaitFor([&] { return walk.state() == QProcess::NotRunning; }, 60000))
        walk.kill();
    const QJsonDocument tree = QJsonDocument::fromJson(walk.readAllStandardOutput());
    if (!tree.isArray())
        qWarning() << "the walk said" << tree.toJson() << walk.readAllStandardError();
    return tree.array();
}

// Controls a screen reader's user can reach and must be told the name of.
QStringList unnamedControls(const QJsonArray &tree, int *controls)
{
    static const QStringList roles { "push button", "toggle button", "text", "list", "slider", "combo box",
                                     "check box", "spin button", "table", "menu bar" };
    QStringList unnamed;
    *controls = 0;
    for (const QJsonValue &value : tree) {
        const QJsonObject object = value.toObject();
        if (!object.value(QLatin1String("showing")).toBool() || !roles.contains(object.value(QLatin1String("role")).toString()))
            continue;
        ++*controls;
        if (object.value(QLatin1String("name")).toString().trimmed().isEmpty())
            unnamed.append(object.value(QLatin1String("role")).toString() + QLatin1Char(' ')
                           + object.value(QLatin1String("path")).toString());
    }
    return unnamed;
}

QJsonObject accessibleNamed(const QJsonArray &tree, const QString &name)
{
    for (const QJsonValue &value : tree) {
        if (value.toObject().value(QLatin1String("name")).toString() == name)
            return value.toObject();
    }
    return {};
}

// Tab until the widget has the focus; the names passed on the way.
QStringList tabTo(QWidget *target, int most = 40)
{
    QStringList passed;
    for (int press = 0; press < most && QApplication::focusWidget() != target; ++press) {
        if (!typeKey(QStringLiteral("Tab")))
            break;
        QTest::qWait(60);
        if (QWidget *focus = QApplication::focusWidget())
            passed.append(focus->objectName());
    }
    return passed;
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
            if (action->text() == shown("MainWindow", "Foot Switch"))
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
                QTRY_VERIFY(dialog->findChild<QLabel *>(QStringLiteral("FootSwitchHint"))->text().contains(shown("MainWindow", "Record &Start").remove(QLatin1Char('&'))));
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

    // Pressing the camera's button takes one snapshot, with the window in
    // front and with another; another device's button does nothing; the
    // button goes with its camera without a word and comes back with it.
    void cameraButton()
    {
        const QString tree = devices.home() + QStringLiteral("/devices");
        QVERIFY(makeDeviceTree(tree));
        QCOMPARE(CameraButton::eventNode(QStringLiteral("Orvix Full HD Camera"), tree), tree + QStringLiteral("/dev/input/event7"));
        QCOMPARE(CameraButton::eventNode(QStringLiteral("Orvix QHD Camera"), tree), QString());
        // This machine has no camera of its own.
        QCOMPARE(CameraButton::eventNode(QStringLiteral("Orvix Full HD Camera")), QString());

        qputenv("ORVIX_DEVICE_ROOT", tree.toLocal8Bit());
        auto noTree = qScopeGuard([] { qunsetenv("ORVIX_DEVICE_ROOT"); });
        const QString line = VirtualDevices::fullHdCamera();
        MainWindow window;
        window.resize(1280, 720);
        window.show();
        QVERIFY(window.isCameraLive());
        QCOMPARE(window.cameraButtonNode(), tree + QStringLiteral("/dev/input/event7"));
        // The snapshot branch is ready a moment after the picture.
        QTest::qWait(1500);
        const auto snapshots = [&] { return QDir(root + QStringLiteral("Image")).entryList({ "*.jpg" }, QDir::Files).size(); };
        const qsizetype before = snapshots();
        QFile button(tree + QStringLiteral("/dev/input/event7"));
        QVERIFY(button.open(QIODevice::WriteOnly | QIODevice::Unbuffered));

        // Held down, the button repeats: one press is one snapshot.
        QVERIFY(button.write(keyEvent(212, 1) + keyEvent(212, 2) + keyEvent(212, 2) + keyEvent(212, 0)) > 0);
        QTRY_COMPARE_WITH_TIMEOUT(snapshots(), before + 1, 5000);
        QTest::qWait(1100); // snapshots are named by the second

        QWidget other;
        other.resize(400, 300);
        other.show();
        other.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&other));
        QVERIFY(!window.isActiveWindow());
        // Another key of the same device does nothing.
        QVERIFY(button.write(keyEvent(28 /* KEY_ENTER */, 1) + keyEvent(28, 0)) > 0);
        QVERIFY(button.write(keyEvent(212, 1) + keyEvent(212, 0)) > 0);
        QTRY_COMPARE_WITH_TIMEOUT(snapshots(), before + 2, 5000);
        QTest::qWait(1100);

        QFile otherCamera(tree + QStringLiteral("/dev/input/event9"));
        QVERIFY(otherCamera.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
        QVERIFY(otherCamera.write(keyEvent(212, 1) + keyEvent(212, 0)) > 0);
        QTest::qWait(1500);
        QCOMPARE(snapshots(), before + 2);

        // Unplugged: the camera and its button go, and nothing is said.
        devices.setCameras({});
        button.close();
        QTRY_VERIFY_WITH_TIMEOUT(!window.isCameraLive(), 6000);
        QVERIFY(window.cameraButtonNode().isEmpty());
        QVERIFY(!window.findChild<QMessageBox *>());
        devices.setCameras({ line });
        QTRY_VERIFY_WITH_TIMEOUT(window.isCameraLive(), 6000);
        QCOMPARE(window.cameraButtonNode(), tree + QStringLiteral("/dev/input/event7"));
        QVERIFY(button.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        QVERIFY(button.write(keyEvent(212, 1) + keyEvent(212, 0)) > 0);
        QTRY_COMPARE_WITH_TIMEOUT(snapshots(), before + 3, 5000);
    }

    // Without a mouse: a screen reader finds a name for every control, and
    // a recording, a snapshot and playing it back are done with keys alone,
    // typed through the X server.
    void keyboardAndScreenReader()
    {
        MainWindow window;
        window.resize(1280, 720);
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QTRY_VERIFY_WITH_TIMEOUT(window.isCameraLive(), 10000);

        // In the language the test runs in, no text is cut off.
        QStringList cut = cutTexts(&window);
        QVERIFY2(cut.isEmpty(), qPrintable(cut.join(QStringLiteral("; "))));

        int controls = 0;
        QJsonArray tree = accessibleTree();
        QVERIFY2(!tree.isEmpty(), "the window is not on the accessibility bus");
        QStringList unnamed = unnamedControls(tree, &controls);
        QVERIFY2(controls >= 15, qPrintable(QString::number(controls)));
        qInfo("%d controls showing, %d objects in all", controls, int(tree.size()));
        QVERIFY2(unnamed.isEmpty(), qPrintable(unnamed.join(QStringLiteral(", "))));
        // A button whose picture is its only label also says what it does.
        for (const char *name : { "Snapshot", "Record", "Mute microphone", "Delete", "Choose storage folder" }) {
            const QJsonObject button = accessibleNamed(tree, shown("MainWindow", name));
            QVERIFY2(!button.isEmpty(), name);
            QVERIFY2(!button.value(QLatin1String("description")).toString().isEmpty(), name);
        }

        // Tab goes through the control bar, left to right, to the fields.
        auto *nameEdit = window.findChild<QLineEdit *>(QStringLiteral("InformationFileNameEdit"));
        window.findChild<QWidget *>(QStringLiteral("ResolutionSetupButton"))->setFocus();
        const QStringList passed = tabTo(nameEdit);
        QCOMPARE(QApplication::focusWidget(), nameEdit);
        const QStringList inOrder { "RotationSetupButton", "ImageCaptureButton", "VideoCaptureButton", "VolumeControlSlider",
                                    "VolumeLevelButton", "InformationDateEdit", "InformationFileNameEdit" };
        QStringList seen;
        for (const QString &name : passed) {
            if (inOrder.contains(name))
                seen.append(name);
        }
        QCOMPARE(seen, inOrder);
        // For the eye: where the focus is shows (kept for a person to look at).
        window.findChild<QWidget *>(QStringLiteral("VideoCaptureButton"))->setFocus();
        QTest::qWait(100);
        const QString focusShot = QStringLiteral("/tmp/orvix-focus-record-button.png");
        if (window.grab().save(focusShot))
            qInfo("the focus on the record button: %s", qPrintable(focusShot));
        nameEdit->setFocus();

        QProcess::execute(QStringLiteral("xdotool"), { QStringLiteral("type"), QStringLiteral("keys") });
        QTRY_COMPARE(nameEdit->text(), QStringLiteral("keys"));
        const auto files = [&](const QString &folder, const QString &pattern) {
            return QDir(root + folder).entryList({ pattern }, QDir::Files);
        };
        const int snapshotsBefore = files(QStringLiteral("Image"), QStringLiteral("*.jpg")).size();
        QVERIFY(typeKey(QStringLiteral("F5")));
        QTRY_COMPARE_WITH_TIMEOUT(recorderState(window), QMediaRecorder::RecordingState, 5000);
        QTest::qWait(1500);
        QVERIFY(typeKey(QStringLiteral("F7")));
        QTRY_COMPARE_WITH_TIMEOUT(files(QStringLiteral("Image"), QStringLiteral("*.jpg")).size(), snapshotsBefore + 1, 5000);
        QTest::qWait(1500);
        QVERIFY(typeKey(QStringLiteral("F4")));
        QTRY_COMPARE_WITH_TIMEOUT(recorderState(window), QMediaRecorder::StoppedState, 10000);
        QTRY_COMPARE_WITH_TIMEOUT(files(QStringLiteral("Movie"), QStringLiteral("keys_*.mp4")).size(), 1, 5000);
        const QString movieName = files(QStringLiteral("Movie"), QStringLiteral("keys_*.mp4")).first();

        // The volume from the keyboard, kept as dragging keeps it.
        auto *volume = window.findChild<QSlider *>(QStringLiteral("VolumeControlSlider"));
        volume->setFocus();
        const int before = volume->value();
        QVERIFY(typeKey(before > 50 ? QStringLiteral("Left") : QStringLiteral("Right")));
        QTRY_VERIFY(volume->value() != before);
        QCOMPARE(QSettings().value(SettingsKeys::micVolume).toInt(), volume->value());

        // The list: reached by Tab, the movie chosen with the arrows and
        // opened with Return, then played with Space.
        auto *list = window.findChild<QListView *>(QStringLiteral("ThumbnailView"));
        auto *model = qobject_cast<OrvixStorageModel *>(list->model());
        QTRY_VERIFY_WITH_TIMEOUT(model->itemForName(movieName), 5000);
        tabTo(list);
        QCOMPARE(QApplication::focusWidget(), list);
        QVERIFY(typeKey(QStringLiteral("Home")));
        for (int press = 0; press < model->rowCount() && list->currentIndex().data().toString() != movieName; ++press) {
            QVERIFY(typeKey(QStringLiteral("Down")));
            QTest::qWait(50);
        }
        QCOMPARE(list->currentIndex().data().toString(), movieName);
        QVERIFY(typeKey(QStringLiteral("Return")));
        auto *stacked = window.findChild<QStackedWidget *>(QStringLiteral("StackedPlayersWidget"));
        QTRY_COMPARE(stacked->currentIndex(), 3);
        auto *player = window.findChild<OrvixMediaPlayerWidget *>();
        QTRY_VERIFY_WITH_TIMEOUT(player->playButton()->isEnabled(), 5000);
        tabTo(player->playButton());
        QCOMPARE(QApplication::focusWidget(), player->playButton());
        QVERIFY(typeKey(QStringLiteral("space")));
        QTRY_COMPARE_WITH_TIMEOUT(player->player()->playbackState(), QMediaPlayer::PlayingState, 5000);

        cut = cutTexts(&window);
        QVERIFY2(cut.isEmpty(), qPrintable(cut.join(QStringLiteral("; "))));
        // The player's controls, now showing, are named too.
        tree = accessibleTree();
        unnamed = unnamedControls(tree, &controls);
        QVERIFY2(unnamed.isEmpty(), qPrintable(unnamed.join(QStringLiteral(", "))));
        QVERIFY(!accessibleNamed(tree, shown("OrvixMediaPlayerWidget", "Position in the movie")).isEmpty());
        QVERIFY(!accessibleNamed(tree, shown("OrvixMediaPlayerWidget", "Pause")).isEmpty());
        // Back to live, by its key.
        QVERIFY(typeKey(QStringLiteral("F1")));
        QTRY_COMPARE(stacked->currentIndex(), 1);
    }

private:
    VirtualDevices &devices;
    QString root;
};

ORVIX_TEST_MAIN(tst_HandsFree)
#include "tst_handsfree.moc"
