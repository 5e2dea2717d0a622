#include "hospitaljobs.h"

#include <QCoreApplication>
#include <QThreadPool>
#include <QVariant>

namespace {
QThreadPool &pool()
{
    // Its own pool: thumbnails in the global one must not hold up a query.
    static QThreadPool hospitalPool;
    hospitalPool.setMaxThreadCount(2);
    return hospitalPool;
}
} // namespace

namespace HospitalJobs {

void run(QObject *receiver, std::function<QVariant()> work, std::function<void(const QVariant &)> done)
{
    QPointer<QObject> guard(receiver);
    pool().start([guard, work = std::move(work), done = std::move(done)] {
        const QVariant result = work();
        // The receiver may go at any moment on its own thread: the answer is
        // posted to the application, which outlives every job, and the
        // receiver is asked for there, on the thread that deletes it.
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [guard, done, result] {
                if (guard)
                    done(result);
            },
            Qt::QueuedConnection);
    });
}

} // namespace HospitalJobs
