// A one-shot task that runs on a thread of its own and deletes itself with it.
#pragma once

#include <atomic>

#include <QMutex>
#include <QObject>
#include <QPointer>
#include <QThread>

class OrvixBasicTask : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OrvixBasicTask)

public:
    explicit OrvixBasicTask(int timeoutMsec, QObject *parent = nullptr);
    ~OrvixBasicTask() override;

    // Moves the parentless task to a new thread and starts it there. The task
    // and the thread delete themselves once the task has finished.
    static QThread *runInThread(OrvixBasicTask *task);

    bool isAborted() const { return aborted.load(std::memory_order_relaxed); }

signals:
    void started();
    void failed();
    void finished();

public slots:
    virtual void timeout();
    virtual void abort();
    void start();
    void finish();

protected:
    virtual void run() = 0;

    QMutex mutex; // for derived tasks
    // Written by the thread that aborts, polled by the task's own thread.
    std::atomic_bool aborted = false;
    int timeoutMsec = 0;

private:
    // The thread the task was made on; it ends and is deleted there.
    QPointer<QThread> home;
};
