// The live view's frame path, off the user-interface thread: Qt's video sink
// on a thread of its own, the newest camera frame, and a render thread that
// turns it into the finished picture (converted, oriented, adjusted, scaled
// to the view's 16:9 rectangle). The window only paints finished pictures.
#pragma once

#include <QImage>
#include <QMutex>
#include <QObject>
#include <QSize>
#include <QThread>
#include <QVideoFrame>

#include "imaging/framefilters.h"
#include "imaging/framerenderer.h"
#include "imaging/framestatistics.h"

class QVideoSink;

class LiveFramePipeline final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LiveFramePipeline)

public:
    struct Picture
    {
        QImage image;
        // The camera frame's own size, before orientation.
        QSize frameSize;
        quint64 serial = 0;
        // The frame's time stamp, in µs of the pipeline's running time; -1 without one.
        qint64 startTime = -1;
    };

    // The live pipeline's base time on the monotonic clock, in ns: with a
    // frame's time stamp, when the camera made it. Set from the video
    // sink's thread; -1 where the pipeline keeps another clock.
    static void setClockBase(qint64 nsec);

    explicit LiveFramePipeline(QObject *parent = nullptr);
    ~LiveFramePipeline() override;

    // The sink to give the capture session; it lives on the video thread.
    QVideoSink *videoSink() const { return sink; }

    // Taken by the next picture rendered.
    void setRotationMode(int mode);
    void setAdjustments(const PictureAdjustments &values);
    // The size the pictures are scaled to; empty for the frame's own size.
    void setTargetSize(const QSize &size);

    // The newest finished picture. Taking it lets the render thread make the
    // next one, so nothing is rendered while no one looks.
    Picture takePicture();
    // Forgets the newest frame and picture, for a camera that went away.
    void clear();
    // Says once, with frameSeen(), when a frame of this size (of any size if
    // empty) arrives, whether or not anyone looks at the pictures.
    void watchForFrame(const QSize &size);

    FrameStatistics &statistics() { return frameStatistics; }

signals:
    // A new picture is ready to take; queued to the receiver.
    void pictureReady(const QVideoFrame &frame);
    void frameSeen(const QSize &size);

private:
    void frameArrived(const QVideoFrame &frame);
    void renderNewest();

    QThread videoThread;
    QThread renderThread;
    QObject *videoContext = nullptr;
    QObject *renderContext = nullptr;
    QVideoSink *sink = nullptr;
    // Used on the render thread only.
    FrameRenderer renderer;
    FrameStatistics frameStatistics;

    QMutex lock;
    QVideoFrame newestFrame;
    bool renderPending = false;
    bool pictureTaken = true;
    Picture newestPicture;
    quint64 nextSerial = 1;
    quint64 generation = 0;
    int rotationMode = 0;
    PictureAdjustments adjustments;
    QSize targetSize;
    bool watching = false;
    QSize watchedSize;
};
