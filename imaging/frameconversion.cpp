// A camera frame to an image the filters and the painter take.
#include "frameconversion.h"

#include <QVideoFrame>

#ifdef ORVIX_HAVE_LIBYUV
#include <libyuv/convert_argb.h>
#endif

namespace FrameConversion {

bool convertsItself(const QVideoFrame &frame)
{
#ifdef ORVIX_HAVE_LIBYUV
    switch (frame.pixelFormat()) {
    case QVideoFrameFormat::Format_YUYV:
    case QVideoFrameFormat::Format_UYVY:
    case QVideoFrameFormat::Format_NV12:
    case QVideoFrameFormat::Format_YUV420P:
        return frame.width() > 0 && frame.height() > 0;
    default:
        return false;
    }
#else
    Q_UNUSED(frame)
    return false;
#endif
}

QImage toImage(const QVideoFrame &frame)
{
    QImage image;
    toImage(frame, image);
    return image;
}

void toImage(const QVideoFrame &frame, QImage &image)
{
#ifdef ORVIX_HAVE_LIBYUV
    if (!convertsItself(frame)) {
        image = frame.toImage();
        return;
    }
    // Alpha is always opaque, so premultiplied is what Qt's own conversion
    // gives too.
    // The filters leave an image they changed as RGB32: the same opaque
    // pixels, so its memory serves again.
    const bool reusable = image.size() == frame.size() && image.isDetached()
            && (image.format() == QImage::Format_ARGB32_Premultiplied || image.format() == QImage::Format_RGB32);
    if (reusable)
        image.reinterpretAsFormat(QImage::Format_ARGB32_Premultiplied);
    else
        image = QImage(frame.size(), QImage::Format_ARGB32_Premultiplied);
    const int width = frame.width();
    const int height = frame.height();
    uchar *out = image.bits();
    const int outStride = int(image.bytesPerLine());
    int result = -1;
    switch (frame.pixelFormat()) {
    case QVideoFrameFormat::Format_YUYV:
        result = libyuv::YUY2ToARGB(frame.bits(0), frame.bytesPerLine(0), out, outStride, width, height);
        break;
    case QVideoFrameFormat::Format_UYVY:
        result = libyuv::UYVYToARGB(frame.bits(0), frame.bytesPerLine(0), out, outStride, width, height);
        break;
    case QVideoFrameFormat::Format_NV12:
        result = libyuv::NV12ToARGB(frame.bits(0), frame.bytesPerLine(0), frame.bits(1), frame.bytesPerLine(1), out,
                                    outStride, width, height);
        break;
    case QVideoFrameFormat::Format_YUV420P:
        result = libyuv::I420ToARGB(frame.bits(0), frame.bytesPerLine(0), frame.bits(1), frame.bytesPerLine(1),
                                    frame.bits(2), frame.bytesPerLine(2), out, outStride, width, height);
        break;
    default:
        break;
    }
    if (result != 0)
        image = frame.toImage();
#else
    image = frame.toImage();
#endif
}

} // namespace FrameConversion
