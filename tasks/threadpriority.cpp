// Background threads (the storage browser's, the archive's sender) below
// the window, the live view and the recorder.
#include "threadpriority.h"

#include <QThread>

#ifdef Q_OS_LINUX
#include <QByteArray>
#include <QDir>
#include <QFile>

#include <cerrno>
#include <cstring>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace {

constexpr int backgroundNice = 10;

#ifdef Q_OS_LINUX
long currentThreadId()
{
    return long(syscall(SYS_gettid));
}
#endif

} // namespace

void lowerCurrentThread()
{
#ifdef Q_OS_LINUX
    lowerThread(currentThreadId(), backgroundNice);
#else
    QThread::currentThread()->setPriority(QThread::LowestPriority);
#endif
}

void lowerCurrentThreadDiskPriority()
{
#ifdef Q_OS_LINUX
    // ioprio_set(IOPRIO_WHO_PROCESS, this thread, IOPRIO_CLASS_IDLE): the
    // idle class takes the disk only when nobody else wants it.
    constexpr int whoProcess = 1;
    constexpr int classIdle = 3;
    constexpr int classShift = 13;
    if (syscall(SYS_ioprio_set, whoProcess, int(currentThreadId()), classIdle << classShift) != 0)
        qWarning("the disk priority of a background thread cannot be lowered: %s", strerror(errno));
#endif
}

std::vector<long> threadsNamedLikeThisOne()
{
    std::vector<long> found;
#ifdef Q_OS_LINUX
    char ownName[17] = {};
    if (prctl(PR_GET_NAME, ownName) != 0)
        return found;
    const long self = currentThreadId();
    const QByteArray name(ownName);
    const QStringList ids = QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &entry : ids) {
        bool number = false;
        const long id = entry.toLong(&number);
        if (!number || id == self)
            continue;
        QFile comm(QStringLiteral("/proc/self/task/%1/comm").arg(entry));
        if (comm.open(QIODevice::ReadOnly) && comm.readAll().trimmed() == name)
            found.push_back(id);
    }
#endif
    return found;
}

bool lowerThread(long id, int niceValue)
{
#ifdef Q_OS_LINUX
    errno = 0;
    const int now = getpriority(PRIO_PROCESS, id_t(id));
    if (errno != 0)
        return false;
    return now >= niceValue || setpriority(PRIO_PROCESS, id_t(id), niceValue) == 0;
#else
    Q_UNUSED(id);
    Q_UNUSED(niceValue);
    return false;
#endif
}
