// The screen shown while no camera is connected: a signal picture and a
// message whose grey slowly pulses.
#pragma once

#include <QFrame>
#include <QString>

class QLabel;
class QTimer;

class WaitingForCameraWidget final : public QFrame
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(WaitingForCameraWidget)

public:
    explicit WaitingForCameraWidget(QWidget *parent = nullptr, Qt::WindowFlags flags = {});
    ~WaitingForCameraWidget() override;

    int greyLevel() const { return level; }
    QString messageText() const;
    bool isPulsing() const;

    // The grey that follows a level, and the direction it then moves in.
    static int nextLevel(int level, bool &brightening);

public slots:
    void start();
    // Hides QWidget::update() for the pulse timer's text connection.
    void update();
    void stop();

private:
    void showLevel();

    QLabel *signalLabel = nullptr;
    QString messageTemplate;
    QLabel *messageLabel = nullptr;
    QTimer *pulseTimer = nullptr;
    int level = 192;
    bool brightening = false;
};
