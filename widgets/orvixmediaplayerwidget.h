// Plays a recorded movie inside the main window: picture, play button, slider.
#pragma once

#include <QMediaPlayer>
#include <QUrl>
#include <QWidget>

class QAudioOutput;
class QPushButton;
class QSlider;
class QVideoWidget;

class OrvixMediaPlayerWidget final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OrvixMediaPlayerWidget)

public:
    explicit OrvixMediaPlayerWidget(QWidget *parent = nullptr);
    ~OrvixMediaPlayerWidget() override;

    void setUrl(const QUrl &url);

    QMediaPlayer *player() { return &mediaPlayer; }
    QPushButton *playButton() const { return playBtn; }
    QSlider *positionSlider() const { return slider; }
    QVideoWidget *videoSurface() const { return surface; }

    static QString playStyleSheet();
    static QString pauseStyleSheet();

public slots:
    void openFile();
    void play();
    void stop();

private slots:
    void mediaStateChanged(QMediaPlayer::PlaybackState state);
    void positionChanged(qlonglong position);
    void durationChanged(qlonglong duration);
    void setPosition(int position);
    void handleError();

private:
    QMediaPlayer mediaPlayer;
    QAudioOutput *audioOutput = nullptr;
    QPushButton *playBtn = nullptr;
    QSlider *slider = nullptr;
    QVideoWidget *surface = nullptr;
    bool errorTold = false;
};
