// Thumbnail decoding off the user-interface thread.
#include "orvixthumbnailloader.h"

#include <QImageReader>
#include <QMutexLocker>
#include <QThread>

#ifdef Q_OS_LINUX
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace {
// Below the live view and the recorder: a browser filling up its icons
// must not cost a recorded frame.
void lowerThisThread()
{
#ifdef Q_OS_LINUX
    setpriority(PRIO_PROCESS, id_t(syscall(SYS_gettid)), 10);
#else
    QThread::currentThread()->setPriority(QThread::LowestPriority);
#endif
}

int ceilDiv(int value, int divisor)
{
    return (value + divisor - 1) / divisor;
}
}

OrvixThumbnailLoader::OrvixThumbnailLoader(QSize box, QObject *parent)
    : QObject(parent)
    , box(box)
{
    const int count = qBound(1, QThread::idealThreadCount(), 4);
    for (int i = 0; i < count; ++i) {
        workers.emplace_back(QThread::create([this] { work(); }));
        workers.back()->setObjectName(QStringLiteral("thumbnails"));
        workers.back()->start();
    }
}

OrvixThumbnailLoader::~OrvixThumbnailLoader()
{
    {
        QMutexLocker locker(&mutex);
        stopping = true;
        queue.clear();
        wake.wakeAll();
    }
    for (auto &worker : workers)
        worker->wait();
}

void OrvixThumbnailLoader::request(const QString &name, const QString &path)
{
    QMutexLocker locker(&mutex);
    queue.enqueue({ name, path });
    wake.wakeOne();
}

void OrvixThumbnailLoader::cancelAll()
{
    QMutexLocker locker(&mutex);
    queue.clear();
}

QImage OrvixThumbnailLoader::thumbnail(const QString &path, QSize box)
{
    QImageReader reader(path);
    const QSize full = reader.size();
    if (!full.isValid()) {
        const QImage image = reader.read();
        return image.isNull() ? image : image.scaled(box, Qt::KeepAspectRatio, Qt::FastTransformation);
    }
    const QSize fit = full.scaled(box, Qt::KeepAspectRatio);
    if (reader.format() == "jpeg") {
        for (int divisor : { 8, 4, 2 }) {
            const QSize reduced(ceilDiv(full.width(), divisor), ceilDiv(full.height(), divisor));
            if (reduced.width() >= fit.width() && reduced.height() >= fit.height()) {
                reader.setScaledSize(reduced);
                break;
            }
        }
    }
    const QImage image = reader.read();
    if (image.isNull())
        return image;
    return image.scaled(fit, Qt::IgnoreAspectRatio, Qt::FastTransformation);
}

void OrvixThumbnailLoader::work()
{
    lowerThisThread();
    forever {
        std::pair<QString, QString> job;
        {
            QMutexLocker locker(&mutex);
            while (!stopping && queue.isEmpty())
                wake.wait(&mutex);
            if (stopping)
                return;
            job = queue.dequeue();
        }
        emit loaded(job.first, job.second, thumbnail(job.second, box));
    }
}
