// Plays a recorded movie inside the main window: picture, play button, slider.
#include "orvixmediaplayerwidget.h"

#include <QAudioDevice>
#include <QAudioOutput>
#include <QBoxLayout>
#include <QFileDialog>
#include <QMediaDevices>
#include <QMessageBox>
#include <QPushButton>
#include <QSlider>
#include <QStandardPaths>
#include <QVideoWidget>

namespace {
QString buttonStyle(const char *icon)
{
    return QStringLiteral("QPushButton#MediaPlayButton {margin: 0px; border: none; border-width: 0;"
                          "background-color: transparent;background-image: url(:/res/MediaPlayer/%1);"
                          "background-repeat: repeat-x;background-position: top left; }"
                          "QPushButton#MediaPlayButton:pressed {margin-left: 1px; margin-top: 1px; }"
                          "QPushButton#MediaPlayButton:focus {border: 2px solid rgb(86, 183, 203); border-radius: 25px; }")
            .arg(QLatin1String(icon));
}
}

QString OrvixMediaPlayerWidget::playStyleSheet()
{
    return buttonStyle("icon_play.png");
}

QString OrvixMediaPlayerWidget::pauseStyleSheet()
{
    return buttonStyle("icon_pause.png");
}

OrvixMediaPlayerWidget::OrvixMediaPlayerWidget(QWidget *parent)
    : QWidget(parent)
{
    surface = new QVideoWidget;
    surface->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);

    playBtn = new QPushButton;
    playBtn->setObjectName(QStringLiteral("MediaPlayButton"));
    playBtn->setStyleSheet(playStyleSheet());
    playBtn->setEnabled(false);
    playBtn->setFixedSize(50, 50);
    playBtn->setAttribute(Qt::WA_LayoutUsesWidgetRect);
    playBtn->setFlat(true);
    playBtn->setAccessibleName(tr("Play"));
    connect(playBtn, &QPushButton::clicked, this, &OrvixMediaPlayerWidget::play);

    slider = new QSlider(Qt::Horizontal);
    slider->setObjectName(QStringLiteral("MediaPositionSlider"));
    slider->setAccessibleName(tr("Position in the movie"));
    slider->setRange(0, 0);
    connect(slider, &QSlider::sliderMoved, this, &OrvixMediaPlayerWidget::setPosition);
    // Arrow keys and clicks on the groove move the position as dragging does.
    connect(slider, &QSlider::actionTriggered, this, [this](int action) {
        if (action != QAbstractSlider::SliderMove)
            setPosition(slider->sliderPosition());
    });

    auto *controls = new QHBoxLayout;
    controls->setContentsMargins(5, 0, 5, 10);
    controls->addWidget(playBtn);
    controls->addWidget(slider);
    auto *layout = new QVBoxLayout;
    layout->addWidget(surface);
    layout->addLayout(controls);
    setLayout(layout);

    mediaPlayer.setVideoOutput(surface);
    connect(&mediaPlayer, &QMediaPlayer::playbackStateChanged, this, &OrvixMediaPlayerWidget::mediaStateChanged);
    connect(&mediaPlayer, &QMediaPlayer::positionChanged, this, &OrvixMediaPlayerWidget::positionChanged);
    connect(&mediaPlayer, &QMediaPlayer::durationChanged, this, &OrvixMediaPlayerWidget::durationChanged);
    connect(&mediaPlayer, &QMediaPlayer::errorOccurred, this, &OrvixMediaPlayerWidget::handleError);
}

OrvixMediaPlayerWidget::~OrvixMediaPlayerWidget()
{
    // The player goes before its outputs.
    mediaPlayer.stop();
    mediaPlayer.setVideoOutput(nullptr);
    mediaPlayer.setAudioOutput(nullptr);
}

void OrvixMediaPlayerWidget::setUrl(const QUrl &url)
{
    playBtn->show();
    slider->show();
    setWindowFilePath(url.isLocalFile() ? url.toLocalFile() : QString());
    errorTold = false;
    // The same file again may have grown since (it was being recorded):
    // the player would keep what it knew of it.
    if (mediaPlayer.source() == url)
        mediaPlayer.setSource(QUrl());
    mediaPlayer.setSource(url);
    const QList<QAudioDevice> outputs = QMediaDevices::audioOutputs();
    if (!outputs.isEmpty()) {
        // Each movie gets a fresh output; the one before is let go, so that
        // a day of browsing does not pile them up.
        QAudioOutput *previous = audioOutput;
        audioOutput = new QAudioOutput(outputs.first(), this);
        mediaPlayer.setAudioOutput(audioOutput);
        if (previous)
            previous->deleteLater();
    }
    // The first picture shows and playback waits for the user.
    mediaPlayer.pause();
    playBtn->setEnabled(true);
}

void OrvixMediaPlayerWidget::openFile()
{
    QFileDialog dialog(this);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setWindowTitle(tr("Open Movie"));
    const QStringList movies = QStandardPaths::standardLocations(QStandardPaths::MoviesLocation);
    dialog.setDirectory(movies.isEmpty() ? QDir::homePath() : movies.first());
    if (dialog.exec() == QDialog::Accepted)
        setUrl(dialog.selectedUrls().constFirst());
}

void OrvixMediaPlayerWidget::play()
{
    if (mediaPlayer.playbackState() == QMediaPlayer::PlayingState)
        mediaPlayer.pause();
    else
        mediaPlayer.play();
}

void OrvixMediaPlayerWidget::stop()
{
    mediaPlayer.stop();
}

void OrvixMediaPlayerWidget::mediaStateChanged(QMediaPlayer::PlaybackState state)
{
    playBtn->setStyleSheet(state == QMediaPlayer::PlayingState ? pauseStyleSheet() : playStyleSheet());
    playBtn->setAccessibleName(state == QMediaPlayer::PlayingState ? tr("Pause") : tr("Play"));
}

void OrvixMediaPlayerWidget::positionChanged(qlonglong position)
{
    slider->setValue(int(position));
}

void OrvixMediaPlayerWidget::durationChanged(qlonglong duration)
{
    slider->setRange(0, int(duration));
}

void OrvixMediaPlayerWidget::setPosition(int position)
{
    mediaPlayer.setPosition(position);
}

void OrvixMediaPlayerWidget::handleError()
{
    playBtn->setEnabled(false);
    // A broken file often fails twice in a row; one message is enough.
    if (errorTold)
        return;
    errorTold = true;
    const QString errorString = mediaPlayer.errorString();
    QString message = tr("Error: ");
    if (errorString.isEmpty())
        message += QStringLiteral(" #") + QString::number(int(mediaPlayer.error()));
    else
        message += errorString;
    QMessageBox box;
    box.setText(message);
    box.exec();
}
