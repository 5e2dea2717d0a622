// One camera frame to the finished picture of the live view.
#include "framerenderer.h"

#include <QVideoFrame>

#include "imaging/frameconversion.h"

namespace {
// A buffer no one else holds, else an empty one, else one to be replaced.
QImage &freeOf(std::array<QImage, 2> &buffers)
{
    for (QImage &buffer : buffers) {
        if (buffer.isDetached())
            return buffer;
    }
    return buffers[0].isNull() ? buffers[0] : buffers[1];
}
}

QImage FrameRenderer::render(const QVideoFrame &source, const Settings &settings)
{
    QVideoFrame frame = source;
    if (!frame.map(QVideoFrame::ReadOnly))
        return QImage();
    // A picture smaller than the frame is sampled first, mirrored on the
    // way: the filters work pixel by pixel, so on the view's pixels alone
    // they give the same picture for a fraction of the work.
    const QSize target = settings.targetSize;
    if (!target.isEmpty() && target.width() <= frame.width() && target.height() <= frame.height()) {
        QImage &picture = freeOf(scaled);
        if (FrameConversion::toScaledImage(frame, target, FrameFilters::mirrorsOf(settings.rotationMode), picture)) {
            frame.unmap();
            FrameFilters::adjust(picture, settings.adjustments);
            return picture;
        }
    }
    // Worked on in place: a second holder would make every step copy.
    QImage &image = freeOf(converted);
    FrameConversion::toImage(frame, image);
    frame.unmap();
    if (image.isNull())
        return image;
    FrameFilters::orientInPlace(image, settings.rotationMode);
    FrameFilters::adjust(image, settings.adjustments);
    if (settings.targetSize.isEmpty() || settings.targetSize == image.size())
        return image;
    QImage &picture = freeOf(scaled);
    FrameFilters::scaledForView(image, settings.targetSize, picture);
    return picture;
}
