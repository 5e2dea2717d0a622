// Thumbnail decoding off the user-interface thread.
#include "orvixthumbnailloader.h"

#include <QImageReader>
#include <QMutexLocker>
#include <QThread>

#include "tasks/threadpriority.h"

namespace {
// Results waiting for the window are delivered in one go when it comes
// round: a long queue of them would be a stall of its own.
constexpr int maxUndelivered = 8;

int ceilDiv(int value, int divisor)
{
    return (value + divisor - 1) / divisor;
}
}

OrvixThumbnailLoader::OrvixThumbnailLoader(QSize box, QObject *parent)
    : QObject(parent)
    , box(box)
{
    // One core stays with the live view and the recorder.
    const int count = qBound(1, QThread::idealThreadCount() - 1, 4);
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

void OrvixThumbnailLoader::taken()
{
    QMutexLocker locker(&mutex);
    --undelivered;
    wake.wakeAll();
}

void OrvixThumbnailLoader::cancelAll()
{
    QMutexLocker locker(&mutex);
    queue.clear();
}

void OrvixThumbnailLoader::hold(bool on)
{
    QMutexLocker locker(&mutex);
    held = on;
    wake.wakeAll();
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
    // A browser filling up its icons must not cost a recorded frame.
    lowerCurrentThread();
    forever {
        std::pair<QString, QString> job;
        {
            QMutexLocker locker(&mutex);
            while (!stopping && (held || queue.isEmpty() || undelivered >= maxUndelivered))
                wake.wait(&mutex);
            if (stopping)
                return;
            job = queue.dequeue();
            ++undelivered;
        }
        emit loaded(job.first, job.second, thumbnail(job.second, box));
    }
}
