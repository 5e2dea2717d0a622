// Background threads (the storage browser's, the archive's sender) below
// the window, the live view and the recorder.
#include "threadpriority.h"

#include <QThread>

#ifdef Q_OS_LINUX
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

void lowerCurrentThread()
{
#ifdef Q_OS_LINUX
    setpriority(PRIO_PROCESS, id_t(syscall(SYS_gettid)), 10);
#else
    QThread::currentThread()->setPriority(QThread::LowestPriority);
#endif
}
