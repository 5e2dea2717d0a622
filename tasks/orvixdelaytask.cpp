// A thread that waits one second and then signals; starts the next file of a split.
#include "orvixdelaytask.h"

#include "app/orvixlogging.h"

OrvixDelayTask::OrvixDelayTask(QObject *parent) : QThread(parent) { }

OrvixDelayTask::~OrvixDelayTask()
{
    wait();
}

void OrvixDelayTask::run()
{
    qCDebug(lcTasks) << "emit start";
    QThread::sleep(1);
    qCDebug(lcTasks) << "emit stop";
    emit delay_surgical(0);
}
