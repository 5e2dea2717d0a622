// MainWindow: construction in its fixed order, teardown, window-state changes.
#include "mainwindow.h"

#include <QAction>
#include <QAudioInput>
#include <QAudioSink>
#include <QCamera>
#include <QDate>
#include <QDateTime>
#include <QEvent>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QSettings>
#include <QSlider>
#include <QStackedWidget>
#include <QStandardItemModel>
#include <QWindowStateChangeEvent>

#include "app/orvixlogging.h"
#include "app/settingskeys.h"
#include "capture/audioinfo.h"
#include "capture/camerabutton.h"
#include "capture/microphonelevel.h"
#include "widgets/footswitch.h"
#include "capture/devicerecognition.h"
#include "capture/orvixdevicewatchdogtask.h"
#include "capture/recordingelements.h"
#include "capture/streamingthreads.h"
#include "hospital/archivequeue.h"
#include "tasks/orvixtaskscheduler.h"
#include "widgets/animationlabel.h"
#include "widgets/orvixvideowidget.h"
#include "widgets/waitingforcamerawidget.h"

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent)
{
    // Before any recorder exists: Qt's recorder picks its elements by rank.
    RecordingElements::install();
    setWindowIcon(QIcon(QStringLiteral(":/res/orvix.png")));

    setupCentralLayout();
    resize(initialSize());

    createResolutionAndRotationActions();
    createActions();
    createMenus();
    footSwitch = new FootSwitch(this);
    // The camera head's button takes a snapshot, whichever window is in front.
    cameraButton = new CameraButton(this);
    connect(cameraButton, &CameraButton::pressed, this, &MainWindow::captureStillImage);
    connect(footSwitch, &FootSwitch::pressed, this, [this](FootSwitch::Pedal pedal) { footPedal(int(pedal)); });

    readSettings();
    setupRecordingGuard();
    setUpAccessibility();

    startLiveView();
    logStartupStep("window built");
    discoverAvailableCameras();
    logStartupStep("cameras found");
    if (!availableCameras.isEmpty()) {
        setCamera(availableCameras.first());
    } else {
        showWaitingPage();
        videoWidget->update();
        setupInvaildUIState();
    }

    startDeviceWatchDog();

    focusHintTimer.setParent(this);
    focusHintTimer.setObjectName(QStringLiteral("focusHintTimer"));
    focusHintTimer.setSingleShot(true);
    connect(&focusHintTimer, SIGNAL(timeout()), this, SLOT(hideFocusRect()));
    formatSettleTimer.setSingleShot(true);
    formatSettleTimer.setInterval(2000);
    connect(&formatSettleTimer, &QTimer::timeout, this, &MainWindow::formatSettled);
}

MainWindow::~MainWindow()
{
    // The application and its display go soon after the window.
    StreamingThreads::keepSpareThreadsFromNowOn();
    // The movie being recorded ends with the window; its fragments are on
    // disk, and the archive gets it as it gets every finished movie.
    const QString lastMovie = !recordingMoviePath.isEmpty() ? recordingMoviePath : finishingMoviePath;
    deletePipeline();
    archiveQueue->stopSending();
    if (!lastMovie.isEmpty() && !removeEmptyMovie(lastMovie, false))
        movieFinished(lastMovie);
    RecordingElements::stopFeedingSilence();
    deleteAudioSource();
    captureSession.setVideoSink(nullptr);
    livePipeline.reset();

    delete audioInfo;
    audioInfo = nullptr;
    if (audioSink)
        audioSink->deleteLater();
    audioSink = nullptr;
    // The watchdog belongs to the scheduler.
}

QSize MainWindow::initialSize() const
{
    // Large enough for a 16:9 picture beside the panels, never beyond the screen.
    const QSize preferred(1280, 760);
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen ? preferred.boundedTo(screen->availableSize()) : preferred;
}

void MainWindow::deletePipeline()
{
    // The camera leaves the session first, while the rest stands still (see
    // takeDownCamera()).
    takeDownCamera();
    delete recorder;
    recorder = nullptr;
    delete imageCapture;
    imageCapture = nullptr;
    delete audioInput;
    audioInput = nullptr;
    livePipeline->clear();
}

void MainWindow::takeDownCamera()
{
    // Each change to Qt's capture pipeline pauses it, and one made while the
    // camera's streaming thread is agreeing a format with the rest of the
    // pipeline deadlocks it. Taking the camera out first, while the rest has
    // long settled, leaves that thread nothing to agree. A restart still
    // waiting goes with it.
    formatSettling = false;
    restartQueued = false;
    formatSettleTimer.stop();
    cameraButton->stop();
    if (!camera)
        return;
    captureSession.setCamera(nullptr);
    delete camera;
    camera = nullptr;
}

void MainWindow::readSettings()
{
    {
        const QSettings settings;
        const int volume = settings.value(SettingsKeys::micVolume, SettingsKeys::defaultMicVolume).toInt();
        const bool muted = settings.value(SettingsKeys::micMuted, false).toBool();
        volumeSlider->setValue(volume);
        muteButton->setChecked(muted);
        if (muted) {
            volumeSlider->setEnabled(false);
            levelMeterLabel->hide();
        }

        static_cast<QLineEdit *>(informationFields[2])->setText(settings.value(SettingsKeys::doctorName).toString());
        static_cast<QLineEdit *>(informationFields[4])->setText(settings.value(SettingsKeys::hospitalName).toString());

        showStoredStorageRoot();

        // The stored count of gigabytes goes in as it is; checking its entry
        // then replaces it with the entry's byte limit.
        const int storedLimit = settings.value(SettingsKeys::sizeLimit, QStringLiteral("0")).toInt();
        sizeLimit = storedLimit;
        checkSizeLimitEntryAtStart(storedLimit);
    }
    static_cast<QLineEdit *>(informationFields[0])->setText(QDate::currentDate().toString(QStringLiteral("yyyy-MM-dd")));
    // The live values start as the panel shows them now.
    for (int i = 0; i < 5; ++i)
        liveInformation[i] = informationText(i + 1);

    fillRecognisedDevices();
}

void MainWindow::fillRecognisedDevices()
{
    recognisedNames = DeviceRecognition::recognisedNames();
    recognisedIds = DeviceRecognition::recognisedIds();
}

void MainWindow::startDeviceWatchDog()
{
    watchDog = new OrvixDeviceWatchDogTask(3, QDateTime::currentDateTime(), nullptr);
    connect(watchDog, SIGNAL(connected( QList<QCameraInfo> )), this, SLOT(cameraConnected( QList<QCameraInfo> )));
    connect(watchDog, SIGNAL(dropped( QList<QCameraInfo> )), this, SLOT(cameraDropped( QList<QCameraInfo> )));

    OrvixTaskScheduler *scheduler = OrvixTaskScheduler::instance();
    scheduler->schedule(watchDog, watchDog->name());
    scheduler->start(QThread::InheritPriority);
}

void MainWindow::changeEvent(QEvent *event)
{
    qCDebug(lcUi) << "changeevent happened" << event->type();
    if (event->type() == QEvent::WindowStateChange) {
        const auto oldState = static_cast<QWindowStateChangeEvent *>(event)->oldState();
        qCDebug(lcUi) << "WindowState" << oldState << windowState();
        if (oldState == Qt::WindowFullScreen) {
            fullScreen = false;
            setFullScreenActions(false, true);
        } else if (windowState() == Qt::WindowFullScreen) {
            fullScreen = true;
            setFullScreenActions(true, true);
        }
    }
    QMainWindow::changeEvent(event);
}
