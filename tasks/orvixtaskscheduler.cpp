// The process-wide thread that runs scheduled tasks when they fall due.
#include "orvixtaskscheduler.h"

#include <limits>

#include <QCoreApplication>
#include <QDateTime>

#include "app/orvixlogging.h"
#include "orvixscheduledtask.h"

namespace {
// Every wait is bounded so that the thread looks at its queue ten times a second.
constexpr qint64 maximumWaitMsec = 100;
}

OrvixTaskScheduler *OrvixTaskScheduler::instance()
{
    static OrvixTaskScheduler *const scheduler =
            new OrvixTaskScheduler(std::numeric_limits<int>::max());
    return scheduler;
}

OrvixTaskScheduler::OrvixTaskScheduler(int capacity, QObject *parent)
    : QThread(parent), capacity(capacity)
{
    setObjectName(QStringLiteral("OrvixTaskScheduler"));
}

OrvixTaskScheduler::~OrvixTaskScheduler()
{
    if (isRunning())
        shutdown();
    // Tasks queued on a scheduler that never ran were never moved on by run().
    qDeleteAll(queue);
}

void OrvixTaskScheduler::schedule(OrvixScheduledTask *task, const QString &name)
{
    if (!task)
        return;
    QMutexLocker locker(&mutex);
    if (task->thread() != this)
        task->moveToThread(this);

    qsizetype index = 0;
    while (index < queue.size() && !(queue.at(index)->dueTime > task->dueTime))
        ++index;
    queue.insert(index, task);
    if (!name.isEmpty())
        tasksByName.insert(name, task);
    if (index == 0)
        wakeCondition.wakeOne();
}

void OrvixTaskScheduler::trigger(const QString &name)
{
    if (stopRequested.loadRelaxed())
        return;
    QMutexLocker locker(&mutex);
    OrvixScheduledTask *task = tasksByName.value(name);
    if (!task || !queue.removeOne(task))
        return;
    task->dueTime = QDateTime::currentDateTime();
    queue.prepend(task);
    wakeCondition.wakeOne();
}

void OrvixTaskScheduler::stop()
{
    stopRequested.storeRelaxed(1);
    QMutexLocker locker(&mutex);
    wakeCondition.wakeAll();
}

void OrvixTaskScheduler::shutdown()
{
    {
        QMutexLocker locker(&mutex);
        stopRequested.storeRelaxed(1);
        const QDateTime now = QDateTime::currentDateTime();
        for (OrvixScheduledTask *task : std::as_const(queue))
            task->dueTime = now;
        wakeCondition.wakeAll();
    }
    if (QThread::currentThread() != this)
        wait();
}

QList<OrvixScheduledTask *> OrvixTaskScheduler::queuedTasks() const
{
    QMutexLocker locker(&mutex);
    return queue;
}

QDateTime OrvixTaskScheduler::nextDueTime(const QDateTime &dueTime, int interval, const QDateTime &now)
{
    QDateTime next = dueTime;
    if (interval <= 0)
        return next;
    while (!(next > now))
        next = next.addSecs(interval);
    return next;
}

QList<OrvixScheduledTask *> OrvixTaskScheduler::takeDueTasks()
{
    for (;;) {
        QCoreApplication::processEvents();
        QMutexLocker locker(&mutex);

        if (!queue.isEmpty()) {
            const qint64 untilDue = QDateTime::currentDateTime().msecsTo(queue.first()->dueTime);
            if (untilDue > 0) {
                // A stop is deliberately not looked at here: it is noticed
                // once the first task falls due.
                wakeCondition.wait(&mutex, qMin(untilDue, maximumWaitMsec));
                continue;
            }
        } else {
            const bool woken = wakeCondition.wait(&mutex, maximumWaitMsec);
            if (woken && stopRequested.loadRelaxed())
                return {};
            continue;
        }

        if (stopRequested.loadRelaxed())
            return {};

        const qint64 nowMsec = QDateTime::currentMSecsSinceEpoch();
        QList<OrvixScheduledTask *> due;
        while (!queue.isEmpty() && queue.first()->dueTime.toMSecsSinceEpoch() <= nowMsec)
            due.append(queue.takeFirst());
        if (!due.isEmpty())
            return due;
    }
}

void OrvixTaskScheduler::forgetName(OrvixScheduledTask *task)
{
    QMutexLocker locker(&mutex);
    for (auto it = tasksByName.begin(); it != tasksByName.end();) {
        if (it.value() == task)
            it = tasksByName.erase(it);
        else
            ++it;
    }
}

void OrvixTaskScheduler::run()
{
    for (;;) {
        const QList<OrvixScheduledTask *> due = takeDueTasks();
        if (due.isEmpty())
            break;

        for (qsizetype i = 0; i < due.size(); ++i) {
            OrvixScheduledTask *task = due.at(i);
            task->run();
            if (task->interval > 0) {
                task->dueTime = nextDueTime(task->dueTime, task->interval, QDateTime::currentDateTime());
                schedule(task);
            } else {
                // No event loop runs on this thread, so deleteLater() would
                // never come true; the task lives here and can go at once.
                forgetName(task);
                delete task;
            }
            if (stopRequested.loadRelaxed()) {
                // The rest of this batch is neither run nor queued again.
                for (qsizetype j = i + 1; j < due.size(); ++j) {
                    forgetName(due.at(j));
                    delete due.at(j);
                }
                break;
            }
            QCoreApplication::processEvents();
        }
    }

    QMutexLocker locker(&mutex);
    while (!queue.isEmpty())
        delete queue.takeFirst();
    tasksByName.clear();
    qCDebug(lcTasks) << "scheduler thread ended";
}
