// The main window without a camera: construction, the settings it reads, the
// four interface states, the File Size menu, full screen and the shortcuts.
#include <functional>

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QSlider>
#include <QStackedWidget>
#include <QTextEdit>

#include "app/settingskeys.h"
#include "app/startupgeometry.h"
#include "mainwindow/mainwindow.h"
#include "mainwindow/sizelimit.h"
#include "orvixtest.h"
#include "widgets/animationlabel.h"
#include "widgets/waitingforcamerawidget.h"

namespace {
QAction *actionWithTip(MainWindow &window, const QString &tip, const QKeySequence &shortcut = {})
{
    for (QAction *action : window.findChildren<QAction *>()) {
        if (action->statusTip() == tip && (shortcut.isEmpty() || action->shortcut() == shortcut))
            return action;
    }
    return nullptr;
}

template<typename T>
T *child(MainWindow &window, const QString &name)
{
    return window.findChild<T *>(name);
}

// One flag of one control, read and written the way a state slot touches it.
struct Flag
{
    QString name;
    std::function<bool(MainWindow &)> get;
    std::function<void(MainWindow &, bool)> set;
    QString expected[4]; // Invalid, Idle, Recording, Media: "on", "off", "-" or "slider"
};

Flag enabledAction(const QString &name, std::function<QAction *(MainWindow &)> find, const QString &invalid,
                   const QString &idle, const QString &recording, const QString &media)
{
    return { name, [find](MainWindow &w) { return find(w)->isEnabled(); },
             [find](MainWindow &w, bool on) { find(w)->setEnabled(on); }, { invalid, idle, recording, media } };
}

template<typename W>
Flag enabledWidget(const QString &objectName, const QString &invalid, const QString &idle,
                   const QString &recording, const QString &media)
{
    return { objectName + QStringLiteral(" enabled"),
             [objectName](MainWindow &w) { return child<W>(w, objectName)->isEnabled(); },
             [objectName](MainWindow &w, bool on) { child<W>(w, objectName)->setEnabled(on); },
             { invalid, idle, recording, media } };
}

Flag shownWidget(const QString &objectName, const QString &invalid, const QString &idle,
                 const QString &recording, const QString &media)
{
    return { objectName + QStringLiteral(" shown"),
             [objectName](MainWindow &w) { return !child<QWidget>(w, objectName)->isHidden(); },
             [objectName](MainWindow &w, bool on) { child<QWidget>(w, objectName)->setHidden(!on); },
             { invalid, idle, recording, media } };
}

QList<Flag> stateFlags()
{
    QList<Flag> flags;
    const QStringList resolutionNames { "1920 x 1080", "1280 x 720", "640 x 480" };
    for (int i = 0; i < 3; ++i)
        flags << enabledAction(resolutionNames[i], [i](MainWindow &w) { return w.resolutionActionList().at(i); },
                               "off", "on", "off", "off");
    flags << enabledAction("640 x 630", [](MainWindow &w) { return w.resolutionActionList().at(3); }, "-", "-", "-", "-");
    for (int i = 0; i < 4; ++i)
        flags << enabledAction(QStringLiteral("rotation %1").arg(i), [i](MainWindow &w) { return w.rotationActionList().at(i); },
                               "off", "on", "off", "off");
    auto tip = [](const char *text, QKeySequence key = {}) {
        return [text, key](MainWindow &w) { return actionWithTip(w, QString::fromUtf8(text), key); };
    };
    flags << enabledAction("Record Start", tip("Start recording"), "off", "on", "off", "off");
    flags << enabledAction("Record Stop", tip("Stop recording"), "off", "off", "on", "off");
    flags << enabledAction("Record Pause", tip("Pause recording"), "off", "off", "on", "off");
    flags << enabledAction("Live", tip("Change to live mode"), "off", "off", "off", "on");
    for (int i = 0; i < 7; ++i)
        flags << enabledAction(QStringLiteral("size entry %1").arg(i), [i](MainWindow &w) { return w.sizeActionList()[i]; },
                               "off", "on", "off", "off");
    flags << enabledAction("SnapShot", tip("Take a snapshot form video"), "off", "on", "on", "off");
    flags << enabledAction("Full Screen (menu)", tip("Toggle full screen mode", QKeySequence(Qt::Key_F9)), "off", "on", "on", "-");
    flags << enabledAction("Full Screen (window)", tip("Toggle full screen mode", QKeySequence("Ctrl+Meta+F")), "off", "on", "on", "off");
    flags << enabledAction("Record Device", tip("Recording device configuration"), "off", "on", "-", "-");
    flags << enabledAction("Video Quality Settings", tip("Configure video quality options"), "off", "on", "-", "-");
    flags << enabledAction("Record Storage Path", tip("Configure recording storage root path"), "off", "on", "-", "-");
    flags << shownWidget("InformationEditButton", "off", "off", "off", "-");
    flags << shownWidget("InformationRefreshButton", "off", "off", "off", "-");
    for (const char *field : { "InformationFileNameEdit", "InformationDoctorNameEdit", "InformationPatientNameEdit",
                               "InformationHospitalNameEdit" })
        flags << enabledWidget<QLineEdit>(QString::fromLatin1(field), "off", "on", "off", "off");
    flags << enabledWidget<QTextEdit>("InformationCommentEdit", "off", "on", "off", "off");
    flags << enabledWidget<QLineEdit>("InformationDateEdit", "-", "-", "-", "-");
    flags << enabledWidget<QPushButton>("ImageCaptureButton", "off", "on", "on", "off");
    flags << enabledWidget<QPushButton>("VideoCaptureButton", "off", "on", "-", "off");
    flags << Flag { "VideoCaptureButton checked",
                    [](MainWindow &w) { return child<QPushButton>(w, "VideoCaptureButton")->isChecked(); },
                    [](MainWindow &w, bool on) { child<QPushButton>(w, "VideoCaptureButton")->setChecked(on); },
                    { "off", "off", "on", "-" } };
    flags << Flag { "recording animation running",
                    [](MainWindow &w) { return child<AnimationLabel>(w, "VideoCaptureAnimationLabel")->isRunning(); },
                    [](MainWindow &w, bool on) { child<AnimationLabel>(w, "VideoCaptureAnimationLabel")->toggle(on); },
                    { "off", "off", "on", "-" } };
    flags << enabledWidget<QPushButton>("LiveSetupButton", "off", "off", "off", "on");
    flags << enabledWidget<QPushButton>("ResolutionSetupButton", "off", "on", "off", "off");
    flags << enabledWidget<QPushButton>("RotationSetupButton", "off", "on", "off", "off");
    flags << enabledWidget<QPushButton>("VolumeLevelButton", "off", "on", "on", "off");
    flags << enabledWidget<QSlider>("VolumeControlSlider", "on", "slider", "slider", "off");
    return flags;
}

void clearSettings()
{
    QSettings().clear();
}
}

// The user's settings file, addressed by the literal keys a stored file has
// (not through the program's own constants, so a misspelt one shows).
#define STORED_FILE QSettings(devices.settingsFile(), QSettings::IniFormat)

class tst_MainWindow : public QObject
{
    Q_OBJECT

public:
    explicit tst_MainWindow(VirtualDevices &devices) : devices(devices) { }

private slots:
    void initTestCase()
    {
        // No camera at all: every window here starts in the invalid state.
        devices.setCameras({});
    }

    void init()
    {
        clearSettings();
    }

    void constructionWithoutCamera()
    {
        {
            auto stored = STORED_FILE;
            stored.setValue(QStringLiteral("informationPanel/doctorName"), QStringLiteral("Dr. Ada Lind"));
            stored.setValue(QStringLiteral("informationPanel/hospitalName"), QStringLiteral("St. Clara"));
            stored.setValue(QStringLiteral("filePreviewPanel/storageLocation"), devices.home());
        }
        MainWindow window;
        QCOMPARE(window.objectName(), QStringLiteral("MainWindow"));
        QCOMPARE(window.windowTitle(), QStringLiteral("Orvix"));
        QVERIFY(!window.windowIcon().isNull());
        QVERIFY(!window.isVisible());
        QCOMPARE(child<QMenuBar>(window, "MenuBar"), window.menuBar());

        auto *stack = child<QStackedWidget>(window, "StackedPlayersWidget");
        QCOMPARE(stack->currentIndex(), 0);
        const QStringList pages { "WaitingForCameraWidget", "CameraViewfinder", "ImageViewWidget", "MediaPlayerWidget" };
        for (int i = 0; i < pages.size(); ++i)
            QCOMPARE(stack->widget(i)->objectName(), pages.at(i));
        QVERIFY(child<WaitingForCameraWidget>(window, "WaitingForCameraWidget")->isPulsing());
        QVERIFY(!window.isCameraLive());

        QCOMPARE(child<QLineEdit>(window, "InformationDoctorNameEdit")->text(), QStringLiteral("Dr. Ada Lind"));
        QCOMPARE(child<QLineEdit>(window, "InformationHospitalNameEdit")->text(), QStringLiteral("St. Clara"));
        QCOMPARE(child<QLineEdit>(window, "InformationDateEdit")->text(), QDate::currentDate().toString("yyyy-MM-dd"));
        QVERIFY(child<QLineEdit>(window, "InformationDateEdit")->isReadOnly());
        QCOMPARE(child<QLineEdit>(window, "StorageLocationEdit")->text(), devices.home());
        QVERIFY(child<QLabel>(window, "StorageFreeSpaceLabel")->text().endsWith('%'));
        QCOMPARE(child<QSlider>(window, "VolumeControlSlider")->value(), SettingsKeys::defaultMicVolume);
        QVERIFY(!child<QPushButton>(window, "VolumeLevelButton")->isChecked());

        // The names are provisioned outside the program: never written back.
        QCOMPARE(QSettings().value(SettingsKeys::doctorName).toString(), QStringLiteral("Dr. Ada Lind"));
        QCOMPARE(QSettings().value(SettingsKeys::micVolume), QVariant());

        auto *hintTimer = window.findChild<QTimer *>(QStringLiteral("focusHintTimer"), Qt::FindDirectChildrenOnly);
        QVERIFY(hintTimer);
        QVERIFY(hintTimer->isSingleShot());
        auto *fileName = child<QLineEdit>(window, "InformationFileNameEdit");
        fileName->setAttribute(Qt::WA_MacShowFocusRect, true);
        hintTimer->start(1);
        QTRY_VERIFY(!fileName->testAttribute(Qt::WA_MacShowFocusRect));
    }

    void mutedAtStart()
    {
        {
            auto stored = STORED_FILE;
            stored.setValue(QStringLiteral("controlPanel/micMuted"), true);
            stored.setValue(QStringLiteral("controlPanel/micVolume"), 33);
        }
        MainWindow window;
        QCOMPARE(child<QSlider>(window, "VolumeControlSlider")->value(), 33);
        QVERIFY(child<QPushButton>(window, "VolumeLevelButton")->isChecked());
        QVERIFY(window.levelMeter()->isHidden());
        // The invalid state enables the slider even so, deliberately.
        QVERIFY(child<QSlider>(window, "VolumeControlSlider")->isEnabled());

        // A drag of the slider, as the user moves it.
        auto *slider = child<QSlider>(window, "VolumeControlSlider");
        slider->setSliderDown(true);
        slider->setSliderPosition(44);
        slider->setSliderDown(false);
        window.muteChanged(false);
        QCOMPARE(STORED_FILE.value(QStringLiteral("controlPanel/micVolume")).toInt(), 44);
        QCOMPARE(STORED_FILE.value(QStringLiteral("controlPanel/micMuted")).toBool(), false);
    }

    void stateSlotsSetOnlyTheirFlags_data()
    {
        QTest::addColumn<int>("state");
        QTest::addColumn<bool>("muted");
        QTest::addRow("Invalid") << 0 << false;
        QTest::addRow("Invalid, muted") << 0 << true;
        QTest::addRow("Idle") << 1 << false;
        QTest::addRow("Idle, muted") << 1 << true;
        QTest::addRow("Recording") << 2 << false;
        QTest::addRow("Recording, muted") << 2 << true;
        QTest::addRow("Media") << 3 << false;
    }

    void stateSlotsSetOnlyTheirFlags()
    {
        QFETCH(int, state);
        QFETCH(bool, muted);
        MainWindow window;
        const QList<Flag> flags = stateFlags();
        const std::function<void()> enterState[4] = { [&] { window.setupInvaildUIState(); }, [&] { window.setupIdleUIState(); },
                                                 [&] { window.setupRecordingUIState(); }, [&] { window.setupMediaUIState(); } };
        QStringList wrong;
        // Every flag starts at true, then at false: what a slot leaves alone
        // must still read as it started.
        for (const bool before : { true, false }) {
            for (const Flag &flag : flags)
                flag.set(window, before);
            child<QPushButton>(window, "VolumeLevelButton")->setChecked(muted);
            actionWithTip(window, "Pause recording")->setText(QStringLiteral("untouched"));
            enterState[state]();
            for (const Flag &flag : flags) {
                QString expected = flag.expected[state];
                if (expected == QLatin1String("slider"))
                    expected = muted ? QStringLiteral("off") : QStringLiteral("on");
                const bool want = expected == QLatin1String("-") ? before : expected == QLatin1String("on");
                if (flag.get(window) != want)
                    wrong << QStringLiteral("%1 (started %2)").arg(flag.name).arg(before);
            }
            const QString pauseText = actionWithTip(window, "Pause recording")->text();
            if (pauseText != (state == 1 ? QStringLiteral("Pause") : QStringLiteral("untouched")))
                wrong << QStringLiteral("pause text %1").arg(pauseText);
        }
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join(QStringLiteral(", "))));
    }

    void liveWithoutCameraShowsTheWaitingPage()
    {
        MainWindow window;
        auto *stack = child<QStackedWidget>(window, "StackedPlayersWidget");
        window.setupMediaUIState();
        stack->setCurrentIndex(3);
        window.liveSetup();
        QCOMPARE(stack->currentIndex(), 0);
        QVERIFY(actionWithTip(window, "Start recording")->isEnabled());
        QVERIFY(!actionWithTip(window, "Change to live mode")->isEnabled());
    }

    void sizeEntryStoresItsValueAndLimit_data()
    {
        QTest::addColumn<int>("entry");
        QTest::addColumn<int>("stored");
        QTest::addColumn<qint64>("limit");
        const qint64 gb = qint64(1) << 30;
        QTest::addRow("1 GB") << int(SizeLimit::OneGB) << 1 << gb;
        QTest::addRow("2 GB") << int(SizeLimit::TwoGB) << 2 << 2 * gb;
        QTest::addRow("3 GB") << int(SizeLimit::ThreeGB) << 3 << 3 * gb;
        QTest::addRow("4 GB") << int(SizeLimit::FourGB) << 4 << 4 * gb;
        QTest::addRow("5 GB stores 4") << int(SizeLimit::FiveGB) << 4 << 5 * gb;
        QTest::addRow("10 GB stores 1") << int(SizeLimit::TenGB) << 1 << 10 * gb;
        QTest::addRow("no limit stores 1") << int(SizeLimit::NoLimit) << 1 << qint64(0);
    }

    void sizeEntryStoresItsValueAndLimit()
    {
        QFETCH(int, entry);
        QFETCH(int, stored);
        QFETCH(qint64, limit);
        QSettings().setValue(SettingsKeys::sizeLimit, 3);
        MainWindow window;
        window.setupIdleUIState();
        const auto actions = window.sizeActionList();
        // Choose another entry first, so that this one starts unchecked.
        actions[entry == SizeLimit::ThreeGB ? SizeLimit::OneGB : SizeLimit::ThreeGB]->trigger();
        actions[entry]->trigger();
        QCOMPARE(STORED_FILE.value(QStringLiteral("runTime/sizeLimit")).toInt(), stored);
        QCOMPARE(window.currentSizeLimit(), limit);
        for (int i = 0; i < SizeLimit::EntryCount; ++i)
            QCOMPARE(actions[i]->isChecked(), i == entry);

        // Unchecking the checked entry checks it again; nothing changes.
        actions[entry]->trigger();
        QVERIFY(actions[entry]->isChecked());
        QCOMPARE(window.currentSizeLimit(), limit);
        QCOMPARE(QSettings().value(SettingsKeys::sizeLimit).toInt(), stored);
    }

    void sizeLimitAtStart_data()
    {
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<int>("checked");
        QTest::addColumn<qint64>("limit");
        QTest::addColumn<int>("storedAfter");
        const qint64 gb = qint64(1) << 30;
        QTest::addRow("absent -> no limit") << QVariant() << int(SizeLimit::NoLimit) << qint64(0) << 1;
        QTest::addRow("0 -> no limit, writes 1") << QVariant(0) << int(SizeLimit::NoLimit) << qint64(0) << 1;
        QTest::addRow("1 -> 1 GB") << QVariant(1) << int(SizeLimit::OneGB) << gb << 1;
        QTest::addRow("4 -> 4 GB") << QVariant(4) << int(SizeLimit::FourGB) << 4 * gb << 4;
        QTest::addRow("5 -> 5 GB, writes 4") << QVariant(5) << int(SizeLimit::FiveGB) << 5 * gb << 4;
        QTest::addRow("10 -> 10 GB, writes 1") << QVariant(10) << int(SizeLimit::TenGB) << 10 * gb << 1;
        QTest::addRow("7 -> 2 GB entry, 2 bytes") << QVariant(7) << int(SizeLimit::TwoGB) << qint64(2) << 2;
        QTest::addRow("-1 -> 2 GB entry, 2 bytes") << QVariant(-1) << int(SizeLimit::TwoGB) << qint64(2) << 2;
        QTest::addRow("11 -> 2 GB entry, 2 bytes") << QVariant(11) << int(SizeLimit::TwoGB) << qint64(2) << 2;
        QTest::addRow("text -> no limit") << QVariant(QStringLiteral("lots")) << int(SizeLimit::NoLimit) << qint64(0) << 1;
    }

    void sizeLimitAtStart()
    {
        QFETCH(QVariant, stored);
        QFETCH(int, checked);
        QFETCH(qint64, limit);
        QFETCH(int, storedAfter);
        if (stored.isValid())
            QSettings().setValue(SettingsKeys::sizeLimit, stored);
        MainWindow window;
        const auto actions = window.sizeActionList();
        for (int i = 0; i < SizeLimit::EntryCount; ++i)
            QCOMPARE(actions[i]->isChecked(), i == checked);
        QCOMPARE(window.currentSizeLimit(), limit);
        QCOMPARE(QSettings().value(SettingsKeys::sizeLimit).toInt(), storedAfter);
    }

    void fullScreenActionsStayTruthful()
    {
        MainWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QAction *menuAction = actionWithTip(window, "Toggle full screen mode", QKeySequence(Qt::Key_F9));
        QAction *windowAction = actionWithTip(window, "Toggle full screen mode", QKeySequence("Ctrl+Meta+F"));

        window.toggleFullScreenMode(true);
        QTRY_VERIFY(window.isFullScreen());
        QVERIFY(window.isFullScreenFlagSet());
        // The state change has come back and enabled them again.
        QTRY_VERIFY(menuAction->isEnabled() && windowAction->isEnabled());
        QVERIFY(menuAction->isChecked() && windowAction->isChecked());

        // Leaving full screen by other means than the actions.
        window.showNormal();
        QTRY_VERIFY(!window.isFullScreen());
        QVERIFY(!window.isFullScreenFlagSet());
        QVERIFY(!menuAction->isChecked() && !windowAction->isChecked());
        QVERIFY(menuAction->isEnabled() && windowAction->isEnabled());
    }

    void secondToggleBeforeTheStateChangeDoesNothing()
    {
        MainWindow window;
        QAction *menuAction = actionWithTip(window, "Toggle full screen mode", QKeySequence(Qt::Key_F9));
        window.toggleFullScreenMode(false);
        QVERIFY(!window.isFullScreenFlagSet());
        window.toggleFullScreenMode(true);
        window.toggleFullScreenMode(true);
        QVERIFY(window.isFullScreenFlagSet());
        QVERIFY(menuAction->isChecked());
    }

    void shortcutsReachTheirActions_data()
    {
        QTest::addColumn<QString>("tip");
        QTest::addColumn<QKeySequence>("key");
        QTest::addRow("F5 record") << "Start recording" << QKeySequence(Qt::Key_F5);
        QTest::addRow("F7 snapshot") << "Take a snapshot form video" << QKeySequence(Qt::Key_F7);
        QTest::addRow("F9 full screen") << "Toggle full screen mode" << QKeySequence(Qt::Key_F9);
        QTest::addRow("Ctrl+Meta+F full screen, in no menu") << "Toggle full screen mode" << QKeySequence("Ctrl+Meta+F");
        QTest::addRow("F1 live, from a stored file") << "Change to live mode" << QKeySequence(Qt::Key_F1);
    }

    void shortcutsReachTheirActions()
    {
        QFETCH(QString, tip);
        QFETCH(QKeySequence, key);
        MainWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        if (key == QKeySequence(Qt::Key_F1))
            window.setupMediaUIState();
        else
            window.setupIdleUIState();
        QAction *action = actionWithTip(window, tip, key);
        QVERIFY(action);
        QSignalSpy triggered(action, &QAction::triggered);
        QTest::keySequence(&window, key);
        QCOMPARE(triggered.size(), 1);
        if (key == QKeySequence(Qt::Key_F1))
            QVERIFY(actionWithTip(window, "Start recording")->isEnabled());
    }

    void startupPlacement_data()
    {
        QTest::addColumn<QSize>("screen");
        QTest::addColumn<QSize>("window");
        QTest::addColumn<QPoint>("position");
        QTest::addRow("centred") << QSize(1920, 1080) << QSize(1280, 760) << QPoint(320, 160);
        QTest::addRow("odd difference truncates") << QSize(1921, 1081) << QSize(1280, 760) << QPoint(320, 160);
        QTest::addRow("larger than the screen: negative") << QSize(1280, 720) << QSize(1401, 761) << QPoint(-60, -20);
    }

    // Sizes alone decide; a screen that starts at (1920, 0) is placed as if at 0.
    void startupPlacement()
    {
        QFETCH(QSize, screen);
        QFETCH(QSize, window);
        QFETCH(QPoint, position);
        QCOMPARE(StartupGeometry::windowPosition(screen, window), position);
        QCOMPARE(StartupGeometry::splashPosition(position), position + QPoint(100, 100));
    }

private:
    VirtualDevices &devices;
};

ORVIX_TEST_MAIN(tst_MainWindow)
#include "tst_mainwindow.moc"
