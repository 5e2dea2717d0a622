// A task that the scheduler thread runs at its due time, once or periodically.
#include "orvixscheduledtask.h"

OrvixScheduledTask::OrvixScheduledTask(int interval, const QDateTime &dueTime, QObject *parent)
    : QObject(parent), interval(interval), dueTime(dueTime)
{
}

OrvixScheduledTask::~OrvixScheduledTask() = default;

const QString &OrvixScheduledTask::name() const
{
    static const QString taskName = QStringLiteral("ScheduledTask");
    return taskName;
}
