// The live picture's software adjustments, its orientation and its place.
#include "framefilters.h"

#include <cmath>

#include <QColor>
#include <QTransform>

namespace FrameFilters {

QImage orient(const QImage &image, int mode)
{
    switch (mode) {
    case 1:
        return image.transformed(QTransform().rotate(180.0, Qt::ZAxis), Qt::FastTransformation);
    case 2:
        return image.mirrored(false, true);
    case 3: {
        // Rotation then a top-to-bottom flip: a left-right mirror, built in
        // these two steps as it always was.
        QImage rotated = image.transformed(QTransform().rotate(180.0, Qt::ZAxis), Qt::FastTransformation);
        rotated.mirror(false, true);
        return rotated;
    }
    default:
        return image;
    }
}

Table brightnessTable(int value)
{
    const int delta = (value * 255) / 100;
    Table table;
    for (int i = 0; i < 256; ++i)
        table[i] = qBound(0, i + delta, 255);
    return table;
}

Table contrastTable(int factor)
{
    Table table;
    for (int i = 0; i < 256; ++i)
        table[i] = qBound(0, ((i - 127) * factor) / 100 + 127, 255);
    return table;
}

Table gammaTable(int g)
{
    // The ratio is formed in single precision, as the picture always was.
    const float exponent = 100.0f / float(g);
    Table table;
    for (int i = 0; i < 256; ++i)
        table[i] = qMin(255, int(std::pow(i / 255.0, double(exponent)) * 255));
    return table;
}

QImage applyTable(const QImage &image, const Table &table)
{
    QImage result = image.copy();
    if (result.colorCount() > 0) {
        QList<QRgb> colors = result.colorTable();
        for (QRgb &color : colors)
            color = qRgba(table[qRed(color)], table[qGreen(color)], table[qBlue(color)], 255);
        result.setColorTable(colors);
        return result;
    }
    if (result.format() != QImage::Format_RGB32)
        result = result.convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < result.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(result.scanLine(y));
        for (int x = 0; x < result.width(); ++x) {
            const QRgb pixel = line[x];
            line[x] = qRgba(table[qRed(pixel)], table[qGreen(pixel)], table[qBlue(pixel)], 255);
        }
    }
    return result;
}

QImage brightness(const QImage &image, int value)
{
    return applyTable(image, brightnessTable(value));
}

QImage contrast(const QImage &image, int value)
{
    if (value == -100)
        return image.copy();
    // The first step away from 0 jumps to a factor of about 2; intended.
    return applyTable(image, contrastTable(value + 200));
}

QImage gamma(const QImage &image, int value)
{
    return applyTable(image, gammaTable(value + 100));
}

QImage hue(const QImage &image, int h)
{
    QImage result = image.copy();
    for (int y = 0; y < result.height(); ++y) {
        for (int x = 0; x < result.width(); ++x) {
            const QColor color(result.pixel(x, y));
            result.setPixel(x, y, QColor::fromHsv(h, color.hsvSaturation(), color.value(), 255).rgb());
        }
    }
    return result;
}

QImage saturation(const QImage &image, int s)
{
    QImage result = image;
    for (int x = 0; x < result.width(); ++x) {
        for (int y = 0; y < result.height(); ++y) {
            int h, sat, l;
            QColor(result.pixel(x, y)).getHsl(&h, &sat, &l);
            result.setPixel(x, y, QColor::fromHsl(h, qBound(0, sat + s, 255), l, 255).rgb());
        }
    }
    return result;
}

QImage warmth(const QImage &image, int w)
{
    QImage result(image.size(), QImage::Format_ARGB32);
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y) {
            const QRgb pixel = image.pixel(x, y);
            result.setPixel(x, y, qRgba(qBound(0, qRed(pixel) + w, 255), qBound(0, qGreen(pixel) + w, 255),
                                        qBlue(pixel), 255));
        }
    }
    return result;
}

QImage adjust(const QImage &image, const PictureAdjustments &values)
{
    QImage result = image;
    if (values.brightness)
        result = brightness(result, values.brightness);
    if (values.contrast)
        result = contrast(result, values.contrast);
    if (values.gamma)
        result = gamma(result, values.gamma);
    if (values.hue)
        result = hue(result, values.hue);
    if (values.saturation)
        result = saturation(result, values.saturation);
    if (values.whiteBalance)
        result = warmth(result, values.whiteBalance);
    // Backlight, gain and exposure reuse the brightness step and stack.
    if (values.backlight)
        result = brightness(result, values.backlight);
    if (values.gain)
        result = brightness(result, values.gain);
    if (values.exposure)
        result = brightness(result, values.exposure);
    return result;
}

QRect targetRect(const QSize &widget)
{
    const int width = widget.width();
    const int height = widget.height();
    const int c = (width / 16) * 9;
    if (c > height) {
        const int w = (height * 16) / 9;
        return QRect((width - w) / 2, 0, w, height);
    }
    return QRect(0, (height - c) >> 1, width, c);
}

} // namespace FrameFilters
