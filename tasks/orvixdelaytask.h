// A thread that waits one second and then signals; starts the next file of a split.
#pragma once

#include <QThread>

class OrvixDelayTask final : public QThread
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OrvixDelayTask)

public:
    explicit OrvixDelayTask(QObject *parent = nullptr);
    ~OrvixDelayTask() override;

signals:
    void delay_surgical(int);

protected:
    void run() override;
};
