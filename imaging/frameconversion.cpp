// A camera frame to an image the filters and the painter take.
#include "frameconversion.h"

#include <vector>

#include <QVideoFrame>
#include <QtMath>

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

namespace {
// The source pixel under each of `count` target pixels, as the painter's
// unsmoothed scaling picks it: 16.16 fixed point from the first centre.
void sourcePixels(int sourceCount, int count, bool mirrored, std::vector<int> &indices)
{
    const double step = double(sourceCount) / count;
    const quint32 increment = quint32(step * 65536);
    quint32 position = quint32(qCeil(0.5 * step * 65536) - 1);
    indices.resize(size_t(count));
    for (int i = 0; i < count; ++i, position += increment) {
        const int index = qMin(int(position >> 16), sourceCount - 1);
        indices[size_t(i)] = mirrored ? sourceCount - 1 - index : index;
    }
}
} // namespace

bool toScaledImage(const QVideoFrame &frame, const QSize &size, FrameFilters::Mirrors mirrors, QImage &image)
{
#ifdef ORVIX_HAVE_LIBYUV
    if (!convertsItself(frame) || size.isEmpty())
        return false;
    if (image.size() != size || image.format() != QImage::Format_RGB32 || !image.isDetached())
        image = QImage(size, QImage::Format_RGB32);
    const int width = frame.width();
    thread_local std::vector<int> columns, rows;
    thread_local std::vector<quint32> row;
    sourcePixels(width, size.width(), mirrors.horizontal, columns);
    sourcePixels(frame.height(), size.height(), mirrors.vertical, rows);
    row.resize(size_t(width));
    auto *rowBytes = reinterpret_cast<uchar *>(row.data());
    for (int y = 0; y < size.height(); ++y) {
        const int source = rows[size_t(y)];
        const int chroma = source / 2;
        int result = -1;
        switch (frame.pixelFormat()) {
        case QVideoFrameFormat::Format_YUYV:
            result = libyuv::YUY2ToARGB(frame.bits(0) + source * frame.bytesPerLine(0), 0, rowBytes, 0, width, 1);
            break;
        case QVideoFrameFormat::Format_UYVY:
            result = libyuv::UYVYToARGB(frame.bits(0) + source * frame.bytesPerLine(0), 0, rowBytes, 0, width, 1);
            break;
        case QVideoFrameFormat::Format_NV12:
            result = libyuv::NV12ToARGB(frame.bits(0) + source * frame.bytesPerLine(0), 0,
                                        frame.bits(1) + chroma * frame.bytesPerLine(1), 0, rowBytes, 0, width, 1);
            break;
        case QVideoFrameFormat::Format_YUV420P:
            result = libyuv::I420ToARGB(frame.bits(0) + source * frame.bytesPerLine(0), 0,
                                        frame.bits(1) + chroma * frame.bytesPerLine(1), 0,
                                        frame.bits(2) + chroma * frame.bytesPerLine(2), 0, rowBytes, 0, width, 1);
            break;
        default:
            break;
        }
        if (result != 0)
            return false;
        auto *out = reinterpret_cast<quint32 *>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x)
            out[x] = row[size_t(columns[size_t(x)])];
    }
    return true;
#else
    Q_UNUSED(frame)
    Q_UNUSED(size)
    Q_UNUSED(mirrors)
    Q_UNUSED(image)
    return false;
#endif
}

} // namespace FrameConversion
