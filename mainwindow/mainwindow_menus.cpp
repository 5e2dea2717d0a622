// MainWindow: actions, menus, the resolution and rotation commands, full screen.
#include "mainwindow.h"

#include <QAction>
#include <QCamera>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>

#include "mainwindow/panelstyles.h"

namespace {
QAction *makeAction(const QString &text, const QString &tip, bool checkable, QObject *parent,
                    const QKeySequence &shortcut = QKeySequence())
{
    auto *action = new QAction(text, parent);
    action->setStatusTip(tip);
    action->setCheckable(checkable);
    if (!shortcut.isEmpty())
        action->setShortcut(shortcut);
    return action;
}
}

void MainWindow::createResolutionAndRotationActions()
{
    // Created in this order; "640 x 630" keeps its "480P" tip and is in no menu.
    auto *resolution4th = makeAction(QStringLiteral("640 x 630"), QStringLiteral("480P"), true, this);
    connect(resolution4th, &QAction::triggered, this, &MainWindow::resolutionTo4th);
    auto *resolution3rd = makeAction(QStringLiteral("640 x 480"), QStringLiteral("480P"), true, this);
    connect(resolution3rd, &QAction::triggered, this, &MainWindow::resolutionTo3rd);
    auto *resolution2nd = makeAction(QStringLiteral("1280 x 720"), QStringLiteral("720P"), true, this);
    connect(resolution2nd, &QAction::triggered, this, &MainWindow::resolutionTo2nd);
    auto *resolution1st = makeAction(QStringLiteral("1920 x 1080"), QStringLiteral("1080P"), true, this);
    connect(resolution1st, &QAction::triggered, this, &MainWindow::resolutionTo1st);
    resolutionActions = { resolution1st, resolution2nd, resolution3rd, resolution4th };

    auto *rotation0 = makeAction(QStringLiteral("0"), tr("Not rotate"), true, this);
    connect(rotation0, &QAction::triggered, this, &MainWindow::rotationNone);
    auto *rotation180 = makeAction(QStringLiteral("180º"), tr("Rotate 180 degree"), true, this);
    connect(rotation180, &QAction::triggered, this, &MainWindow::rotation180Degree);
    auto *mirror = makeAction(tr("Mirror"), tr("Mirror"), true, this);
    connect(mirror, &QAction::triggered, this, &MainWindow::rotationMirror);
    auto *rotation180Mirror = makeAction(tr("180º Mirror"), tr("Rotate 180 degree with mirror"), true, this);
    connect(rotation180Mirror, &QAction::triggered, this, &MainWindow::rotation180DegreeWithMirror);
    rotationActions = { rotation0, rotation180, mirror, rotation180Mirror };
}

void MainWindow::createActions()
{
    startAction = makeAction(tr("Record &Start"), tr("Start recording"), false, this,
                             QKeySequence(Qt::Key_F5));
    connect(startAction, &QAction::triggered, this, &MainWindow::captureVideo);
    // The same slot toggles between starting and stopping.
    stopAction = makeAction(tr("Record S&top"), tr("Stop recording"), false, this,
                            QKeySequence(Qt::Key_F4));
    connect(stopAction, &QAction::triggered, this, &MainWindow::captureVideo);
    pauseAction = makeAction(tr("Record &Pause"), tr("Pause recording"), false, this,
                             QKeySequence(Qt::Key_F3));
    connect(pauseAction, &QAction::triggered, this, &MainWindow::pauseCaptureVideo);
    liveAction = makeAction(tr("&Live"), tr("Change to live mode"), false, this,
                            QKeySequence(Qt::Key_F1));
    connect(liveAction, &QAction::triggered, this, &MainWindow::liveSetup);

    struct SizeEntry { const char *text; const char *tip; void (MainWindow::*slot)(); };
    static const SizeEntry sizeEntries[7] = {
        { QT_TRANSLATE_NOOP("MainWindow", "&1GB"), QT_TRANSLATE_NOOP("MainWindow", "Limit the maximum size of a video file to 1GB"), &MainWindow::limitSizeTo1GB },
        { QT_TRANSLATE_NOOP("MainWindow", "&2GB"), QT_TRANSLATE_NOOP("MainWindow", "Limit the maximum size of a video file to 2GB"), &MainWindow::limitSizeTo2GB },
        { QT_TRANSLATE_NOOP("MainWindow", "&3GB"), QT_TRANSLATE_NOOP("MainWindow", "Limit the maximum size of a video file to 3GB"), &MainWindow::limitSizeTo3GB },
        { QT_TRANSLATE_NOOP("MainWindow", "&4GB"), QT_TRANSLATE_NOOP("MainWindow", "Limit the maximum size of a video file to 4GB"), &MainWindow::limitSizeTo4GB },
        { QT_TRANSLATE_NOOP("MainWindow", "&5GB"), QT_TRANSLATE_NOOP("MainWindow", "Limit the maximum size of a video file to 5GB"), &MainWindow::limitSizeTo5GB },
        { QT_TRANSLATE_NOOP("MainWindow", "1&0GB"), QT_TRANSLATE_NOOP("MainWindow", "Limit the maximum size of a video file to 10GB"), &MainWindow::limitSizeTo10GB },
        { QT_TRANSLATE_NOOP("MainWindow", "&No Size Limit"), QT_TRANSLATE_NOOP("MainWindow", "Unlimit the maximum size of a video file"), &MainWindow::limitSizeToNoLimit },
    };
    for (int i = 0; i < 7; ++i) {
        sizeActions[i] = makeAction(tr(sizeEntries[i].text), tr(sizeEntries[i].tip), true, this);
        connect(sizeActions[i], &QAction::toggled, this, sizeEntries[i].slot);
    }

    snapShotAction = makeAction(tr("SnapShot"), tr("Take a snapshot form video"), false, this,
                                QKeySequence(Qt::Key_F7));
    connect(snapShotAction, &QAction::triggered, this, &MainWindow::captureStillImage);

    // Their toggled() connections are made per camera set-up.
    fullScreenAction = makeAction(tr("Full Screen"), tr("Toggle full screen mode"), true, this,
                                  QKeySequence(Qt::Key_F9));
    fullScreenWindowAction = makeAction(tr("Full Screen"), tr("Toggle full screen mode"), true, this,
                                        QKeySequence(QStringLiteral("Ctrl+Meta+F")));
    // In no menu: on the window itself so that its shortcut still works.
    addAction(fullScreenWindowAction);

    recordDeviceAction = makeAction(tr("Record Device"), tr("Recording device configuration"), false, this);
    connect(recordDeviceAction, &QAction::triggered, this, &MainWindow::videoSettings);
    videoQualityAction = makeAction(tr("Video Quality Settings"), tr("Configure video quality options"), false, this);
    connect(videoQualityAction, &QAction::triggered, this, &MainWindow::showColorDialog);
    storagePathAction = makeAction(tr("Record Storage Path"), tr("Configure recording storage root path"), false, this);
    connect(storagePathAction, &QAction::triggered, this, &MainWindow::updateStorageRoot);
    hospitalAction = makeAction(tr("Hospital Systems"), tr("Set up the archive (PACS) and the worklist"), false, this);
    connect(hospitalAction, &QAction::triggered, this, &MainWindow::showHospitalSettings);
    footSwitchAction = makeAction(tr("Foot Switch"), tr("Learn the keys of the foot switch's pedals"), false, this);
    connect(footSwitchAction, &QAction::triggered, this, &MainWindow::showFootSwitchDialog);
    finishCaseAction = makeAction(tr("Finish Case"), tr("End this patient's case and clear the patient for the next one"), false, this);
    connect(finishCaseAction, &QAction::triggered, this, &MainWindow::finishCase);
}

void MainWindow::createMenus()
{
    mainMenuBar = new QMenuBar(this);
    mainMenuBar->setObjectName(QStringLiteral("MenuBar"));
    mainMenuBar->setStyleSheet(PanelStyles::menus());
    setMenuBar(mainMenuBar);

    QMenu *recordMenu = mainMenuBar->addMenu(tr("&Record"));
    recordMenu->addActions({ startAction, stopAction, pauseAction, liveAction });

    QMenu *sizeMenu = mainMenuBar->addMenu(tr("&File Size"));
    for (QAction *action : sizeActions)
        sizeMenu->addAction(action);

    mainMenuBar->addMenu(tr("S&napShot"))->addAction(snapShotAction);
    mainMenuBar->addMenu(tr("&Screen"))->addAction(fullScreenAction);

    QMenu *configurationMenu = mainMenuBar->addMenu(tr("&Configuration"));
    configurationMenu->addActions({ recordDeviceAction, videoQualityAction, storagePathAction });
    // Beyond the designed entries, apart from them.
    configurationMenu->addSeparator();
    configurationMenu->addAction(hospitalAction);
    configurationMenu->addAction(finishCaseAction);
    configurationMenu->addAction(footSwitchAction);

    QMenu *helpMenu = mainMenuBar->addMenu(tr("&Help"));
    helpAction = makeAction(tr("Help"), tr("Open help document"), false, this);
    connect(helpAction, &QAction::triggered, this, &MainWindow::help);
    // The help tip is reused for "Version" as it always was.
    versionAction = makeAction(tr("Version"), tr("Open help document"), false, this);
    connect(versionAction, &QAction::triggered, this, &MainWindow::version);
    versionAction->setEnabled(true);
    helpMenu->addActions({ helpAction, versionAction });
    // Beyond the designed entries: where the technician finds the log.
    helpMenu->addSeparator();
    logFolderAction = makeAction(tr("Log Folder"), tr("Open the folder of the program's log"), false, this);
    logFolderAction->setObjectName(QStringLiteral("LogFolderAction"));
    connect(logFolderAction, &QAction::triggered, this, &MainWindow::openLogFolder);
    helpMenu->addAction(logFolderAction);

    rotationMenu = new QMenu(tr("Rotation"), this);
    rotationMenu->addActions(rotationActions);
    rotationMenu->setStyleSheet(PanelStyles::menus());
    rotationButton->setMenu(rotationMenu);

    // The title is reused on purpose; a button menu shows none.
    resolutionMenu = new QMenu(tr("Rotation"), this);
    resolutionMenu->addActions(resolutionActions.mid(0, 3));
    resolutionMenu->setStyleSheet(PanelStyles::menus());
    resolutionButton->setMenu(resolutionMenu);
}

void MainWindow::applyResolution(int index)
{
    resolutionIndex = index;
    QCameraFormat format;
    for (int i = 0; i < 3; ++i) {
        resolutionActions[i]->setChecked(i == index);
        if (i == index && index < cameraFormats.size())
            format = cameraFormats.at(index);
    }
    if (camera)
        restartCamera(format);
}

void MainWindow::resolutionTo1st() { applyResolution(0); }
void MainWindow::resolutionTo2nd() { applyResolution(1); }
void MainWindow::resolutionTo3rd() { applyResolution(2); }

void MainWindow::resolutionTo4th()
{
    // Deliberately empty: the entry is in no menu.
}

void MainWindow::applyRotation(int mode)
{
    rotationMode = mode;
    livePipeline->setRotationMode(mode);
    for (int i = 0; i < rotationActions.size(); ++i)
        rotationActions[i]->setChecked(i == mode);
}

void MainWindow::rotationNone() { applyRotation(0); }
void MainWindow::rotation180Degree() { applyRotation(1); }
void MainWindow::rotationMirror() { applyRotation(2); }
void MainWindow::rotation180DegreeWithMirror() { applyRotation(3); }

void MainWindow::setFullScreenActions(bool checked, bool enabled)
{
    for (QAction *action : { fullScreenAction, fullScreenWindowAction }) {
        action->setChecked(checked);
        action->setEnabled(enabled);
    }
}

void MainWindow::toggleFullScreenMode(bool on)
{
    // Both actions stay disabled until the window's state change arrives, so
    // a quick second press does nothing.
    if (on && !fullScreen) {
        fullScreen = true;
        setFullScreenActions(true, false);
        showFullScreen();
    } else if (!on && fullScreen) {
        fullScreen = false;
        setFullScreenActions(false, false);
        showNormal();
    }
}
