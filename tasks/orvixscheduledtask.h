// A task that the scheduler thread runs at its due time, once or periodically.
#pragma once

#include <QDateTime>
#include <QObject>
#include <QString>

class OrvixScheduledTask : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OrvixScheduledTask)

public:
    OrvixScheduledTask(int interval, const QDateTime &dueTime, QObject *parent = nullptr);
    ~OrvixScheduledTask() override;

    // Names the kind of task; the scheduler's key for trigger().
    virtual const QString &name() const;
    virtual void run() = 0;

    // Seconds between runs; 0 runs once. Read and moved on by the scheduler thread.
    int interval = 0;
    QDateTime dueTime;
};
