// The screen shown while no camera is connected: a signal picture and a
// message whose grey slowly pulses.
#include "waitingforcamerawidget.h"

#include <QLabel>
#include <QTimer>
#include <QVBoxLayout>

namespace {
constexpr int brightest = 192;
constexpr int darkest = 62;
constexpr int pulseStep = 10;
constexpr int pulseMsec = 100;
}

WaitingForCameraWidget::WaitingForCameraWidget(QWidget *parent, Qt::WindowFlags flags)
    : QFrame(parent, flags),
      messageTemplate(QStringLiteral("<div style=\"text-align: center; font-size: 22px; color: #%1%1%1;\">")
                      + tr("Please connect Orvix cameras.").toHtmlEscaped() + QStringLiteral("</div>"))
{
    auto *layout = new QVBoxLayout(this);
    layout->addStretch(8);

    signalLabel = new QLabel(this);
    signalLabel->setObjectName(QStringLiteral("SignalImageLabel"));
    signalLabel->setPixmap(QPixmap(QStringLiteral(":/res/WaitingForCamera/signal.png")));
    layout->addWidget(signalLabel, 0, Qt::AlignHCenter);
    layout->addSpacing(5);

    messageLabel = new QLabel(this);
    messageLabel->setObjectName(QStringLiteral("WaitingForCameraMessage"));
    messageLabel->setStyleSheet(QStringLiteral("QLabel#WaitingForCameraMessage {background-color: black; }"));
    level = brightest;
    showLevel();
    layout->addWidget(messageLabel, 4);
    layout->addStretch(7);

    pulseTimer = new QTimer(this);
    connect(pulseTimer, SIGNAL(timeout()), this, SLOT(update()));
}

WaitingForCameraWidget::~WaitingForCameraWidget() = default;

QString WaitingForCameraWidget::messageText() const
{
    return messageLabel->text();
}

bool WaitingForCameraWidget::isPulsing() const
{
    return pulseTimer->isActive();
}

int WaitingForCameraWidget::nextLevel(int level, bool &brightening)
{
    if (level == brightest) {
        brightening = false;
        return brightest - pulseStep;
    }
    if (level == darkest) {
        brightening = true;
        return darkest + pulseStep;
    }
    return brightening ? level + pulseStep : level - pulseStep;
}

void WaitingForCameraWidget::start()
{
    level = brightest;
    brightening = false;
    showLevel();
    pulseTimer->start(pulseMsec);
}

void WaitingForCameraWidget::update()
{
    level = nextLevel(level, brightening);
    showLevel();
}

void WaitingForCameraWidget::stop()
{
    pulseTimer->stop();
}

void WaitingForCameraWidget::showLevel()
{
    messageLabel->setText(messageTemplate.arg(level, 2, 16, QLatin1Char('0')));
}
