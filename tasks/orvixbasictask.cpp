// A one-shot task that runs on a thread of its own and deletes itself with it.
#include "orvixbasictask.h"

#include <QThread>
#include <QTimer>

namespace {
constexpr int finishDelayMsec = 100;
constexpr int preciseTimeoutLimitMsec = 2000;
}

OrvixBasicTask::OrvixBasicTask(int timeoutMsec, QObject *parent)
    : QObject(parent), timeoutMsec(timeoutMsec)
{
}

OrvixBasicTask::~OrvixBasicTask() = default;

QThread *OrvixBasicTask::runInThread(OrvixBasicTask *task)
{
    task->home = task->thread();
    auto *thread = new QThread;
    connect(thread, &QThread::started, task, &OrvixBasicTask::start, Qt::QueuedConnection);
    connect(task, &OrvixBasicTask::finished, thread, &QThread::quit);
    connect(task, &OrvixBasicTask::finished, task, &QObject::deleteLater);
    connect(thread, &QThread::finished, thread, &QObject::deleteLater);
    task->moveToThread(thread);
    thread->start(QThread::InheritPriority);
    return thread;
}

void OrvixBasicTask::timeout()
{
    emit failed();
}

void OrvixBasicTask::abort()
{
    aborted.store(true, std::memory_order_relaxed);
}

void OrvixBasicTask::start()
{
    if (timeoutMsec != 0) {
        const auto type = timeoutMsec < preciseTimeoutLimitMsec ? Qt::PreciseTimer : Qt::CoarseTimer;
        QTimer::singleShot(timeoutMsec, type, this, &OrvixBasicTask::timeout);
    }
    emit started();
    run();
    QTimer::singleShot(finishDelayMsec, Qt::PreciseTimer, this, &OrvixBasicTask::finish);
}

void OrvixBasicTask::finish()
{
    // The thread that made the task may hold a pointer to it that it reads
    // unguarded (a QPointer is cleared by the deleting thread): the task goes
    // back there to announce its end and be deleted, so that the pointer is
    // cleared on that thread. Without a running home it ends where it is.
    QThread *back = home.data();
    if (back && back != thread() && back->isRunning() && back->eventDispatcher()) {
        moveToThread(back);
        QMetaObject::invokeMethod(this, &OrvixBasicTask::finished, Qt::QueuedConnection);
        return;
    }
    emit finished();
}
