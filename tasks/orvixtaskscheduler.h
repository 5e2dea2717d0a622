// The process-wide thread that runs scheduled tasks when they fall due.
#pragma once

#include <QAtomicInt>
#include <QHash>
#include <QList>
#include <QMutex>
#include <QString>
#include <QThread>
#include <QWaitCondition>

class OrvixScheduledTask;

class OrvixTaskScheduler final : public QThread
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OrvixTaskScheduler)

public:
    // The one scheduler of the process; never deleted.
    static OrvixTaskScheduler *instance();

    explicit OrvixTaskScheduler(int capacity, QObject *parent = nullptr);
    ~OrvixTaskScheduler() override;

    // Takes ownership of the task. Safe from any thread.
    void schedule(OrvixScheduledTask *task, const QString &name = QString());
    void trigger(const QString &name);
    void stop();

    // For program exit: stop() alone is only noticed once the first task
    // falls due, up to a whole period later. This makes every queued task due
    // so the thread ends within one wait, then joins it.
    void shutdown();

    // The queue in due order, for inspection.
    QList<OrvixScheduledTask *> queuedTasks() const;

    // The next due time of a periodic task after a run that ended at now:
    // whole periods later, and later than now; missed periods are skipped.
    static QDateTime nextDueTime(const QDateTime &dueTime, int interval, const QDateTime &now);

protected:
    void run() override;

private:
    QList<OrvixScheduledTask *> takeDueTasks();
    void forgetName(OrvixScheduledTask *task);

    int capacity = 0;
    QAtomicInt stopRequested = 0;
    QWaitCondition wakeCondition;
    QWaitCondition idleCondition; // nothing waits on it
    mutable QMutex mutex;
    QList<OrvixScheduledTask *> queue;
    QHash<QString, OrvixScheduledTask *> tasksByName;
};

// Ends the scheduler thread where it goes out of scope. Declared after the
// main window, it ends the thread before the window and the application are
// destroyed: a watchdog run during their destruction, or during the
// process's own exit, would meet objects half gone.
class OrvixSchedulerShutdown final
{
    Q_DISABLE_COPY_MOVE(OrvixSchedulerShutdown)

public:
    OrvixSchedulerShutdown() = default;
    ~OrvixSchedulerShutdown() { OrvixTaskScheduler::instance()->shutdown(); }
};

