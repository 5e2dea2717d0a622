// A label that plays a numbered series of pictures from the resources.
#pragma once

#include <QLabel>
#include <QList>
#include <QPixmap>

class QTimer;

class AnimationLabel final : public QLabel
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AnimationLabel)

public:
    explicit AnimationLabel(QWidget *parent = nullptr, Qt::WindowFlags flags = {});
    ~AnimationLabel() override;

    // Loads folder/01.png ... folder/NN.png.
    void loadFrames(const QString &folder, int count, bool hideWhenStopped);

    int frameCount() const { return int(frames.size()); }
    int currentFrame() const { return current; }
    bool isRunning() const;
    int interval() const;

    // The frame the animation climbs to before it falls back to the first;
    // -1 for none.
    int stopAtFrame() const { return stopAt; }
    void climbTo(int frame);

public slots:
    void start(int msec);
    void start();
    void stop();
    void toggle(bool toStart);
    void step();
    void setCurrent(int frame);

private:
    void showFrame(int frame);

    bool hideWhenStopped = false;
    QList<QPixmap> frames;
    int current = 0;
    QTimer *frameTimer = nullptr;
    int stopAt = -1;
};
