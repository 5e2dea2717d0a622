// MainWindow: cameras and microphones, the capture session, the live frame
// renderer, microphone volume, mute and level meter.
#include "mainwindow.h"

#include <algorithm>
#include <memory>
#include <utility>

#include <QAction>
#include <QAudioInput>
#include <QAudioSink>
#include <QCamera>
#include <QCoreApplication>
#include <QDir>
#include <QMediaDevices>
#include <QMediaFormat>
#include <QPainter>
#include <QPushButton>
#include <QSettings>
#include <QSlider>
#include <QStackedWidget>
#include <QVideoSink>

#include "app/orvixlogging.h"
#include "app/settingskeys.h"
#include "capture/audioinfo.h"
#include "capture/camerabutton.h"
#include "capture/devicerecognition.h"
#include "capture/microphonelevel.h"
#include "widgets/animationlabel.h"
#include "widgets/orvixvideowidget.h"
#include "widgets/waitingforcamerawidget.h"

namespace {

QAudioFormat levelMeterFormat()
{
    QAudioFormat format;
    format.setSampleRate(8000);
    format.setChannelCount(1);
    format.setSampleFormat(QAudioFormat::Int16);
    return format;
}
}

void MainWindow::discoverAvailableCameras()
{
    QList<QCameraDevice> cameras = availableCameras;
    const QList<QCameraDevice> inputs = QMediaDevices::videoInputs();
    for (const QCameraDevice &camera : inputs) {
        qCDebug(lcCapture) << "discoverAvailableCameras: " << camera.description();
        if (DeviceRecognition::isRecognised(camera.description(), recognisedNames) && !cameras.contains(camera))
            cameras.append(camera);
    }
    availableCameras = cameras;
}

void MainWindow::cameraConnected(QList<QCameraDevice> connectedCameras)
{
    for (const QCameraDevice &camera : std::as_const(connectedCameras)) {
        if (availableCameras.contains(camera))
            continue;
        availableCameras.append(camera);
        if (!this->camera)
            setCamera(camera);
    }
}

void MainWindow::cameraDropped(QList<QCameraDevice> droppedCameras)
{
    bool runningDropped = false;
    for (const QCameraDevice &dropped : std::as_const(droppedCameras)) {
        if (!availableCameras.removeOne(dropped))
            continue;
        if (!camera || dropped != startedCameraDevice)
            continue;

        runningDropped = true;
        cameraLive = false;
        qCDebug(lcCapture) << "cameraDropped description:" << dropped.description();
        // The file written so far stays playable: it is written in fragments.
        const bool wasRecording = recordingWanted;
        const QString droppedMovie = std::exchange(recordingMoviePath, QString());
        recordingWanted = false;
        ++recordingSeries;
        recordingGuardTimer.stop();
        stopWaitTimer.stop();
        forgetSplitDelay();
        if (recorder && recorder->recorderState() != QMediaRecorder::StoppedState)
            recorder->stop();
        abortFileSplitTask();
        hideRecordingTime();
        recordingAnimationLabel->toggle(false);
        videoCaptureButton->setChecked(false);
        deletePipeline();
        startedCameraDevice = QCameraDevice();
        // A file begun after the camera had already gone has sound only.
        const bool removed = removeEmptyMovie(droppedMovie, false);
        if (!removed)
            movieFinished(droppedMovie);

        stopMediaPlayer();
        showWaitingPage();
        setupInvaildUIState();
        if (wasRecording) {
            const QString kept = QDir::toNativeSeparators(droppedMovie.isEmpty() ? lastMovieFile : droppedMovie);
            showRecordingWarning(removed ? tr("The camera was disconnected, so the recording has stopped.\n\n"
                                              "The file %1 was begun as the camera went and held no picture; "
                                              "it has been removed.").arg(kept)
                                         : tr("The camera was disconnected, so the recording has stopped.\n\n"
                                              "What was recorded is kept in %1.").arg(kept));
        }
    }
    if (runningDropped && !availableCameras.isEmpty())
        setCamera(availableCameras.first());
}

void MainWindow::showWaitingPage()
{
    stackedPlayers->setCurrentIndex(0);
    waitingWidget->start();
}

void MainWindow::setCamera(QCameraDevice cameraInfo)
{
    deletePipeline();

    // Of several qualifying microphones the last in the system's order wins;
    // one picked in the record device dialog wins while it is attached.
    const QList<QAudioDevice> microphones = QMediaDevices::audioInputs();
    for (const QAudioDevice &microphone : microphones) {
        const bool picked = microphone == userMicrophone;
        if (!picked && !DeviceRecognition::microphoneQualifies(microphone.description()))
            continue;
        delete audioInput;
        audioInput = new QAudioInput;
        audioInput->setDevice(microphone);
        chosenMicrophone = microphone;
        if (picked)
            break;
    }

    const QList<QAudioDevice> outputs = QMediaDevices::audioOutputs();
    if (!outputs.isEmpty())
        audioOutputDevice = outputs.first();

    imageCapture = new QImageCapture;
    currentCameraDevice = cameraInfo;
    camera = new QCamera(cameraInfo);
    // Every change to Qt's capture pipeline pauses it, and a pause while the
    // camera is still agreeing its format with the rest deadlocks the
    // pipeline. So the camera gets its format while it is on its own, and
    // joins the session last, when nothing else is left to change.
    const QList<QCameraFormat> startFormats = thirtyFpsFormats(cameraInfo);
    if (!startFormats.isEmpty())
        camera->setCameraFormat(startFormats.first());

    captureSession.setVideoSink(livePipeline->videoSink());

    if (audioInput) {
        connect(audioInput, SIGNAL(volumeChanged(float )), this, SLOT(updateAudioOutVolum(float)));
        // A fresh input is loud and unmuted: it records what the controls
        // show, or a muted surgeon would be recorded after a re-plug.
        applyMicrophoneControls();
        captureSession.setAudioInput(audioInput);
    }

    setupLevelMeter();

    captureSession.setImageCapture(imageCapture);

    // Neither signal exists on QCamera, so neither takes effect: camera state
    // changes and errors are deliberately not routed to the window.
    connect(camera, SIGNAL(stateChanged(QCamera::State)), this, SLOT(updateCameraState( QCamera::State )));
    connect(camera, SIGNAL(error( QCamera::Error )), this, SLOT(cameraError( QCamera::Error )));

    recorder = new QMediaRecorder;
    // The back end's default here is not a widely playable MP4: ask for H.264
    // and MP3 in an MPEG-4 file explicitly.
    QMediaFormat format(QMediaFormat::MPEG4);
    format.setVideoCodec(QMediaFormat::VideoCodec::H264);
    format.setAudioCodec(QMediaFormat::AudioCodec::MP3);
    recorder->setMediaFormat(format);
    captureSession.setRecorder(recorder);

    connect(recorder, SIGNAL(stateChanged( &QMediaRecorder::recorderStateChanged )),
            this, SLOT(updateRecorderState( QMediaRecorder::State )));
    connect(recorder, &QMediaRecorder::recorderStateChanged, this, &MainWindow::updateRecorderState);
    connect(recorder, SIGNAL(durationChanged( qint64 )), this, SLOT(updateRecordTime( qint64 )));
    connect(recorder, SIGNAL(error( QMediaRecorder::Error )), this, SLOT(recorderError( QMediaRecorder::Error )));
    // The connection above never takes effect; the recording guard hears of
    // failures here instead.
    connect(recorder, &QMediaRecorder::errorOccurred, this, &MainWindow::noteRecorderError);

    camera->setWhiteBalanceMode(QCamera::WhiteBalanceManual);

    // Not made unique: every set-up adds one more call per toggle.
    fullScreen = false;
    connect(fullScreenAction, SIGNAL(toggled( bool )), this, SLOT(toggleFullScreenMode( bool )));
    connect(fullScreenWindowAction, SIGNAL(toggled( bool )), this, SLOT(toggleFullScreenMode( bool )));

    updateRecorderState(recorder->recorderState());

    connect(imageCapture, SIGNAL(readyForCaptureChanged(bool)), this, SLOT(readyForCapture( bool )));
    connect(imageCapture, SIGNAL(imageCaptured( int, QImage )), this, SLOT(capturedImage( int, QImage )));
    connect(imageCapture, SIGNAL(imageSaved( int, QString )), this, SLOT(imageSaved( int, QString )));
    connect(imageCapture, SIGNAL(error( int, QCameraImageCapture::Error, QString )),
            this, SLOT(captureError( int, QCameraImageCapture::Error, QString )));
    connect(camera, SIGNAL(lockStatusChanged( QCamera::LockStatus, QCamera::LockChangeReason )),
            this, SLOT(updateCameraLockState( QCamera::LockStatus, QCamera::LockChangeReason )));
    // The error connection above never takes effect; the snapshot guard hears
    // of failures here instead.
    connect(imageCapture, &QImageCapture::errorOccurred, this, &MainWindow::noteCaptureError);

    captureSession.setCamera(camera);
    logStartupStep("camera set up");
    camera->setActive(true);
    logStartupStep("camera started");
    cameraButton->watch(CameraButton::eventNode(cameraInfo.description()));
    awaitSettledFormat();
    startedCameraDevice = cameraInfo;
    stopMediaPlayer();
    stackedPlayers->setCurrentIndex(1);
    waitingWidget->stop();

    chooseCameraFormat();
    fillResolutionMenu();
    applyRotation(0);

    cameraLive = true;
    refillLiveInformation();

    setupIdleUIState();
}

void MainWindow::setupLevelMeter()
{
    const QAudioFormat format = levelMeterFormat();
    delete audioInfo;
    audioInfo = new AudioInfo(format);
    deleteAudioSource();
    // Without a recognised microphone there is no level to show; an empty
    // device would otherwise open the system's default input.
    if (!chosenMicrophone.isNull()) {
        microphoneLevel = std::make_unique<MicrophoneLevel>(chosenMicrophone, format);
        connect(microphoneLevel.get(), &MicrophoneLevel::levelRead, this, &MainWindow::audioVolumChange);
    } else {
        levelMeterLabel->climbTo(0);
    }
    audioInfo->start();
    // Like the source, Qt's sink runs the event loop in its destructor.
    if (audioSink)
        audioSink->deleteLater();
    audioSink = new QAudioSink(audioOutputDevice, format);
    // Exists and plays nothing.
    audioSink->setVolume(1.0);
}

void MainWindow::deleteAudioSource()
{
    // Its thread may still be opening the stream: it ends on its own, and
    // the window waits for it only when it goes.
    retiredMicrophoneLevels.erase(std::remove_if(retiredMicrophoneLevels.begin(), retiredMicrophoneLevels.end(),
                                                 [](const auto &level) { return level->isFinished(); }),
                                  retiredMicrophoneLevels.end());
    if (!microphoneLevel)
        return;
    microphoneLevel->disconnect(this);
    microphoneLevel->stop();
    retiredMicrophoneLevels.push_back(std::move(microphoneLevel));
}

QList<QCameraFormat> MainWindow::thirtyFpsFormats(const QCameraDevice &device) const
{
    const QList<QCameraFormat> formats = device.videoFormats();
    QList<DeviceRecognition::FormatInfo> infos;
    for (const QCameraFormat &format : formats)
        infos.append({ format.resolution(), format.maxFrameRate() });
    QList<QCameraFormat> chosen;
    for (int index : DeviceRecognition::selectFormats(infos, formatFrameRate))
        chosen.append(formats.at(index));
    return chosen;
}

void MainWindow::chooseCameraFormat()
{
    resolutionIndex = DeviceRecognition::initialResolutionIndex(currentCameraDevice.description());
    cameraFormats = thirtyFpsFormats(currentCameraDevice);

    for (int i = 0; i < 3; ++i)
        resolutionActions[i]->setChecked(i == 0);
    // A camera with no 30 fps format keeps its own default format. The
    // camera was given this one before it started (see setCamera); Qt would
    // restart it for the same format again.
    if (!cameraFormats.isEmpty() && camera->cameraFormat() != cameraFormats.first())
        camera->setCameraFormat(cameraFormats.first());
}

void MainWindow::fillResolutionMenu()
{
    resolutions = DeviceRecognition::menuResolutions(currentCameraDevice.photoResolutions());
    for (int i = 0; i < resolutions.size(); ++i) {
        resolutionActions[i]->setText(DeviceRecognition::resolutionText(resolutions.at(i)));
        resolutionActions[i]->setChecked(i == 0);
    }
}

void MainWindow::startLiveView()
{
    livePipeline = std::make_unique<LiveFramePipeline>();
    livePipeline->setRotationMode(rotationMode);
    livePipeline->setAdjustments(adjustments);
    connect(livePipeline.get(), &LiveFramePipeline::pictureReady, this, &MainWindow::handleVideoFrame);
    if (lcPerf().isInfoEnabled()) {
        auto firstFrame = std::make_shared<QMetaObject::Connection>();
        *firstFrame = connect(livePipeline->videoSink(), &QVideoSink::videoFrameChanged, this, [firstFrame] {
            logStartupStep("first frame from the camera");
            QObject::disconnect(*firstFrame);
        }, Qt::DirectConnection);
    }
    // A stale report, from before the last restart, must not settle this one.
    connect(livePipeline.get(), &LiveFramePipeline::frameSeen, this, [this](const QSize &size) {
        if (formatSettling && (settlingSize.isEmpty() || size == settlingSize))
            formatSettled();
    });
    if (lcPerf().isInfoEnabled()) {
        perfLogTimer.setInterval(10000);
        connect(&perfLogTimer, &QTimer::timeout, this, &MainWindow::logFrameStatistics);
        perfLogTimer.start();
    }
}

void MainWindow::adjustmentsChanged()
{
    livePipeline->setAdjustments(adjustments);
}

// Stops the camera, gives it the format (if any) and starts it again. The
// stream then agrees the format anew, and a second change before that is
// done can stop the stream for good, with a frozen view: a restart asked for
// meanwhile waits until a frame in the new format has arrived, or a moment
// has passed, and only the newest one asked for is made.
void MainWindow::restartCamera(const QCameraFormat &format)
{
    if (formatSettling) {
        restartQueued = true;
        queuedFormat = format;
        return;
    }
    camera->setActive(false);
    if (!format.isNull())
        camera->setCameraFormat(format);
    camera->setActive(true);
    awaitSettledFormat();
}

void MainWindow::awaitSettledFormat()
{
    formatSettling = true;
    settlingSize = camera->cameraFormat().resolution();
    livePipeline->watchForFrame(settlingSize);
    formatSettleTimer.start();
}

void MainWindow::formatSettled()
{
    formatSettling = false;
    formatSettleTimer.stop();
    if (std::exchange(restartQueued, false) && camera)
        restartCamera(std::exchange(queuedFormat, QCameraFormat()));
}

void MainWindow::handleVideoFrame(QVideoFrame videoframe)
{
    // The render thread has made this frame's picture; the paint shows it.
    // Every frame passes here: the start-up's line is looked up once only.
    static bool madeOnce = false;
    if (!std::exchange(madeOnce, true))
        logStartupStep("first picture made");
    currentFrame = videoframe;
    videoWidget->update();
}

// The picture arrives finished from the render thread: painting it is a copy.
void MainWindow::renderFrame(QPainter &painter)
{
    const QRect target = FrameFilters::targetRect(videoWidget->size());
    livePipeline->setTargetSize(target.size());
    const LiveFramePipeline::Picture picture = livePipeline->takePicture();
    if (picture.image.isNull())
        return;
    if (picture.image.size() == target.size())
        painter.drawImage(target.topLeft(), picture.image);
    else
        painter.drawImage(target, picture.image, picture.image.rect());
    static bool paintedOnce = false;
    if (!std::exchange(paintedOnce, true))
        logStartupStep("first picture painted");
}

void MainWindow::logFrameStatistics()
{
    const FrameStatistics::Period period = livePipeline->statistics().takePeriod();
    qCInfo(lcPerf, "live view, last %d s: %d frames received, %d shown, %d skipped; render mean %.1f ms, worst %.1f ms; "
                   "frame age when shown mean %.1f ms, worst %.1f ms",
           int(perfLogTimer.interval() / 1000), period.received, period.shown, period.skipped, period.meanRenderMs,
           period.worstRenderMs, period.meanAgeMs, period.worstAgeMs);
}

void MainWindow::updateAudioOutVolum(float volume)
{
    qCDebug(lcCapture) << "===================================updateAioutput volum" << volume;
}

QString MainWindow::cameraButtonNode() const
{
    return cameraButton->watchedNode();
}

void MainWindow::applyMicrophoneControls()
{
    if (!audioInput)
        return;
    audioInput->setVolume(float(volumeSlider->value() / 100.0));
    audioInput->setMuted(muteButton->isChecked());
}

void MainWindow::volumeChanged(int level)
{
    QSettings().setValue(SettingsKeys::micVolume, level);
    qCDebug(lcCapture) << "volumeChanged" << level;
    if (recorder && audioInput)
        audioInput->setVolume(float(level / 100.0));
}

void MainWindow::muteChanged(bool muted)
{
    QSettings().setValue(SettingsKeys::micMuted, muted);
    volumeSlider->setEnabled(!muted);
    levelMeterLabel->setVisible(!muted);
    if (audioInput)
        audioInput->setMuted(muted);
}

void MainWindow::audioVolumChange(double level)
{
    // The meter only jumps up from here; the animation brings it back down.
    const int frame = LevelMeter::frameForLevel(level);
    if (frame > levelMeterLabel->stopAtFrame())
        levelMeterLabel->climbTo(frame);
}
