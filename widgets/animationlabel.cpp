// A label that plays a numbered series of pictures from the resources.
#include "animationlabel.h"

#include <QTimer>

AnimationLabel::AnimationLabel(QWidget *parent, Qt::WindowFlags flags)
    : QLabel(parent, flags), frameTimer(new QTimer(this))
{
    connect(frameTimer, &QTimer::timeout, this, &AnimationLabel::step);
}

AnimationLabel::~AnimationLabel() = default;

void AnimationLabel::loadFrames(const QString &folder, int count, bool hide)
{
    const QString pattern = folder + QStringLiteral("/%1.png");
    for (int i = 1; i <= count; ++i)
        frames.append(QPixmap(pattern.arg(i, 2, 10, QLatin1Char('0'))));
    hideWhenStopped = hide;
    if (hideWhenStopped)
        this->hide();
    current = 0;
    showFrame(0);
}

bool AnimationLabel::isRunning() const
{
    return frameTimer->isActive();
}

int AnimationLabel::interval() const
{
    return frameTimer->interval();
}

void AnimationLabel::climbTo(int frame)
{
    stopAt = frame;
    current = 0;
}

void AnimationLabel::start(int msec)
{
    current = 0;
    showFrame(0);
    if (hideWhenStopped)
        show();
    frameTimer->start(msec);
}

void AnimationLabel::start()
{
    // Callers load frames first: there is no interval for an empty series.
    if (frames.isEmpty())
        return;
    start(1000 / int(frames.size()));
}

void AnimationLabel::stop()
{
    frameTimer->stop();
    if (hideWhenStopped)
        hide();
    current = 0;
    showFrame(0);
}

void AnimationLabel::toggle(bool toStart)
{
    if (toStart)
        start();
    else
        stop();
}

void AnimationLabel::step()
{
    if (frames.isEmpty())
        return;
    int next = current + 1;
    if (next >= frames.size())
        next = 0;
    if (stopAt >= 0 && stopAt <= next) {
        // Having reached its target the meter falls back and rests on the
        // first frame until it is given a new one.
        current = 0;
        stopAt = 0;
    } else {
        current = next;
    }
    showFrame(current);
}

void AnimationLabel::setCurrent(int frame)
{
    if (frame >= frames.size())
        return;
    // Any valid number selects the last frame; kept as it always was.
    current = frame < 0 ? 0 : int(frames.size()) - 1;
    showFrame(current);
}

void AnimationLabel::showFrame(int frame)
{
    if (frame >= 0 && frame < frames.size())
        setPixmap(frames.at(frame));
}
