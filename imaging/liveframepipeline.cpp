// The live view's frame path, off the user-interface thread.
#include "liveframepipeline.h"

#include <atomic>
#include <ctime>
#include <utility>

#include <QElapsedTimer>
#include <QVideoSink>

namespace {
std::atomic<qint64> clockBaseNsec { -1 };

qint64 monotonicNsec()
{
    timespec now {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return qint64(now.tv_sec) * 1000000000 + now.tv_nsec;
}
} // namespace

void LiveFramePipeline::setClockBase(qint64 nsec)
{
    clockBaseNsec = nsec;
}

LiveFramePipeline::LiveFramePipeline(QObject *parent)
    : QObject(parent)
{
    // Qt's video sink hands its start and every frame to the thread it was
    // made on, and waits: a second at most for the start, then it gives up
    // for good and the live view stays stuck. This thread does nothing but
    // take the frame, so it answers at once however busy the rest is.
    videoThread.setObjectName(QStringLiteral("OrvixVideo"));
    renderThread.setObjectName(QStringLiteral("OrvixRender"));
    videoThread.start();
    renderThread.start();
    videoContext = new QObject;
    videoContext->moveToThread(&videoThread);
    renderContext = new QObject;
    renderContext->moveToThread(&renderThread);
    QMetaObject::invokeMethod(videoContext, [this] {
        sink = new QVideoSink;
        connect(sink, &QVideoSink::videoFrameChanged, sink, [this](const QVideoFrame &frame) { frameArrived(frame); },
                Qt::DirectConnection);
    }, Qt::BlockingQueuedConnection);
}

LiveFramePipeline::~LiveFramePipeline()
{
    QMetaObject::invokeMethod(videoContext, [this] {
        delete sink;
        sink = nullptr;
        delete videoContext;
        videoContext = nullptr;
    }, Qt::BlockingQueuedConnection);
    videoThread.quit();
    videoThread.wait();
    // A render still queued is dropped with the thread's event loop.
    renderThread.quit();
    renderThread.wait();
    delete renderContext;
}

void LiveFramePipeline::setRotationMode(int mode)
{
    QMutexLocker locker(&lock);
    rotationMode = mode;
}

void LiveFramePipeline::setAdjustments(const PictureAdjustments &values)
{
    QMutexLocker locker(&lock);
    adjustments = values;
}

void LiveFramePipeline::setTargetSize(const QSize &size)
{
    QMutexLocker locker(&lock);
    targetSize = size;
}

// On the video thread: only the newest frame waits, so a busy render or
// window skips frames instead of queuing them.
void LiveFramePipeline::frameArrived(const QVideoFrame &frame)
{
    frameStatistics.frameReceived();
    QMutexLocker locker(&lock);
    if (watching && (watchedSize.isEmpty() || frame.size() == watchedSize)) {
        watching = false;
        emit frameSeen(frame.size());
    }
    newestFrame = frame;
    if (renderPending || !pictureTaken)
        return;
    renderPending = true;
    QMetaObject::invokeMethod(renderContext, [this] { renderNewest(); }, Qt::QueuedConnection);
}

void LiveFramePipeline::renderNewest()
{
    QVideoFrame frame;
    FrameRenderer::Settings settings;
    quint64 startedIn;
    {
        QMutexLocker locker(&lock);
        startedIn = generation;
        frame = std::exchange(newestFrame, QVideoFrame());
        settings = { rotationMode, adjustments, targetSize };
    }
    QElapsedTimer cost;
    cost.start();
    QImage image = renderer.render(frame, settings);
    if (!image.isNull())
        frameStatistics.frameRendered(cost.nsecsElapsed());
    {
        QMutexLocker locker(&lock);
        renderPending = false;
        // A camera that went away meanwhile leaves no picture behind.
        if (image.isNull() || startedIn != generation)
            return;
        newestPicture = { std::move(image), frame.size(), nextSerial++, frame.startTime() };
        pictureTaken = false;
    }
    emit pictureReady(frame);
}

LiveFramePipeline::Picture LiveFramePipeline::takePicture()
{
    QMutexLocker locker(&lock);
    if (!pictureTaken) {
        pictureTaken = true;
        const qint64 base = clockBaseNsec;
        frameStatistics.frameShown(base >= 0 && newestPicture.startTime >= 0
                                           ? monotonicNsec() - base - newestPicture.startTime * 1000
                                           : -1);
        if (newestFrame.isValid() && !renderPending) {
            renderPending = true;
            QMetaObject::invokeMethod(renderContext, [this] { renderNewest(); }, Qt::QueuedConnection);
        }
    }
    return newestPicture;
}

void LiveFramePipeline::watchForFrame(const QSize &size)
{
    QMutexLocker locker(&lock);
    watching = true;
    watchedSize = size;
}

void LiveFramePipeline::clear()
{
    QMutexLocker locker(&lock);
    newestFrame = QVideoFrame();
    newestPicture = Picture();
    pictureTaken = true;
    ++generation;
}
