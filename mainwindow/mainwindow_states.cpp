// MainWindow: the four interface states. Each sets only the flags it lists;
// the others keep what the previous state gave them.
#include "mainwindow.h"

#include <QAction>
#include <QPushButton>
#include <QSlider>
#include <QStackedWidget>

#include "tasks/orvixdelaytask.h"
#include "widgets/animationlabel.h"

namespace {
void enable(const QList<QAction *> &actions, bool on)
{
    for (QAction *action : actions)
        action->setEnabled(on);
}

template<std::size_t N>
void enable(const std::array<QAction *, N> &actions, bool on)
{
    for (QAction *action : actions)
        action->setEnabled(on);
}

template<std::size_t N>
void enableFields(const std::array<QWidget *, N> &fields, bool on)
{
    // The date field is read-only and never touched.
    for (std::size_t i = 1; i < N; ++i)
        fields[i]->setEnabled(on);
}
}

void MainWindow::setupInvaildUIState()
{
    enable(resolutionActions.mid(0, 3), false);
    enable(rotationActions, false);
    startAction->setEnabled(false);
    stopAction->setEnabled(false);
    pauseAction->setEnabled(false);
    liveAction->setEnabled(false);
    enable(sizeActions, false);
    snapShotAction->setEnabled(false);
    fullScreenAction->setEnabled(false);
    fullScreenWindowAction->setEnabled(false);
    enable({ recordDeviceAction, videoQualityAction, storagePathAction }, false);

    informationEditButton->hide();
    informationRefreshButton->hide();
    enableFields(informationFields, false);

    imageCaptureButton->setEnabled(false);
    videoCaptureButton->setEnabled(false);
    videoCaptureButton->setChecked(false);
    recordingAnimationLabel->toggle(false);
    liveButton->setEnabled(false);
    resolutionButton->setEnabled(false);
    rotationButton->setEnabled(false);

    muteButton->setEnabled(false);
    // Enabled even without a camera, deliberately.
    volumeSlider->setEnabled(true);
}

void MainWindow::setupIdleUIState()
{
    enable(resolutionActions.mid(0, 3), true);
    enable(rotationActions, true);
    startAction->setEnabled(true);
    stopAction->setEnabled(false);
    pauseAction->setEnabled(false);
    pauseAction->setText(tr("Pause"));
    liveAction->setEnabled(false);
    enable(sizeActions, true);
    snapShotAction->setEnabled(true);
    fullScreenAction->setEnabled(true);
    fullScreenWindowAction->setEnabled(true);
    enable({ recordDeviceAction, videoQualityAction, storagePathAction }, true);

    informationEditButton->hide();
    informationRefreshButton->hide();
    enableFields(informationFields, true);

    imageCaptureButton->setEnabled(true);
    videoCaptureButton->setEnabled(true);
    videoCaptureButton->setChecked(false);
    recordingAnimationLabel->toggle(false);
    liveButton->setEnabled(false);
    resolutionButton->setEnabled(true);
    rotationButton->setEnabled(true);

    muteButton->setEnabled(true);
    volumeSlider->setEnabled(!muteButton->isChecked());
}

void MainWindow::setupRecordingUIState()
{
    enable(resolutionActions.mid(0, 3), false);
    enable(rotationActions, false);
    startAction->setEnabled(false);
    stopAction->setEnabled(true);
    pauseAction->setEnabled(true);
    liveAction->setEnabled(false);
    enable(sizeActions, false);
    snapShotAction->setEnabled(true);
    fullScreenAction->setEnabled(true);
    fullScreenWindowAction->setEnabled(true);

    informationEditButton->hide();
    informationRefreshButton->hide();
    enableFields(informationFields, false);

    imageCaptureButton->setEnabled(true);
    videoCaptureButton->setChecked(true);
    recordingAnimationLabel->toggle(true);
    liveButton->setEnabled(false);
    resolutionButton->setEnabled(false);
    rotationButton->setEnabled(false);

    muteButton->setEnabled(true);
    volumeSlider->setEnabled(!muteButton->isChecked());
}

void MainWindow::setupMediaUIState()
{
    enable(resolutionActions.mid(0, 3), false);
    enable(rotationActions, false);
    startAction->setEnabled(false);
    stopAction->setEnabled(false);
    pauseAction->setEnabled(false);
    liveAction->setEnabled(true);
    enable(sizeActions, false);
    snapShotAction->setEnabled(false);
    // The menu's full-screen action keeps its flag; only the window's goes.
    fullScreenWindowAction->setEnabled(false);

    enableFields(informationFields, false);

    imageCaptureButton->setEnabled(false);
    videoCaptureButton->setEnabled(false);
    liveButton->setEnabled(true);
    resolutionButton->setEnabled(false);
    rotationButton->setEnabled(false);

    muteButton->setEnabled(false);
    volumeSlider->setEnabled(false);
}

void MainWindow::liveSetup()
{
    stopMediaPlayer();
    stackedPlayers->setCurrentIndex(cameraLive ? 1 : 0);
    // The texts typed for the next recording come back with the live view.
    refillLiveInformation();
    setupIdleUIState();
    // A recording may have gone on while a file was looked at: its stop
    // button must come back, not the start of a new one. The recording
    // state is entered from idle, as when it began.
    const bool recordingGoesOn = recorder
            && (recorder->recorderState() != QMediaRecorder::StoppedState || splitPending || splitDelayTask);
    if (recordingGoesOn)
        setupRecordingUIState();
}
