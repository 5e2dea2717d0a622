#include "hospitaljobs.h"

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
        if (!guard)
            return;
        QMetaObject::invokeMethod(
            guard.data(),
            [guard, done, result] {
                if (guard)
                    done(result);
            },
            Qt::QueuedConnection);
    });
}

} // namespace HospitalJobs
