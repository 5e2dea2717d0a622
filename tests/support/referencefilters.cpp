// The picture filters done the literal way, pixel by pixel with QColor: the
// reference the fast filters must match bit for bit.
#include "referencefilters.h"

#include <cmath>

#include <QColor>

namespace ReferenceFilters {

QImage table(const QImage &image, int (*entry)(int i, int value), int value)
{
    int lookup[256];
    for (int i = 0; i < 256; ++i)
        lookup[i] = entry(i, value);
    QImage result = image.copy();
    if (result.colorCount() > 0) {
        for (int i = 0; i < result.colorCount(); ++i) {
            const QRgb c = result.color(i);
            result.setColor(i, qRgba(lookup[qRed(c)], lookup[qGreen(c)], lookup[qBlue(c)], 255));
        }
        return result;
    }
    if (result.format() != QImage::Format_RGB32)
        result = result.convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < result.height(); ++y) {
        for (int x = 0; x < result.width(); ++x) {
            const QRgb c = result.pixel(x, y);
            result.setPixel(x, y, qRgba(lookup[qRed(c)], lookup[qGreen(c)], lookup[qBlue(c)], 255));
        }
    }
    return result;
}

QImage brightness(const QImage &image, int value)
{
    return table(image, [](int i, int v) { return qBound(0, i + (v * 255) / 100, 255); }, value);
}

QImage contrast(const QImage &image, int value)
{
    if (value == -100)
        return image.copy();
    return table(image, [](int i, int v) { return qBound(0, ((i - 127) * (v + 200)) / 100 + 127, 255); }, value);
}

QImage gamma(const QImage &image, int value)
{
    return table(image, [](int i, int v) {
        const float exponent = 100.0f / float(v + 100);
        return qMin(255, int(std::pow(i / 255.0, double(exponent)) * 255));
    }, value);
}

QImage hue(const QImage &image, int h)
{
    QImage result = image.copy();
    for (int y = 0; y < result.height(); ++y) {
        for (int x = 0; x < result.width(); ++x) {
            const QColor colour(result.pixel(x, y));
            result.setPixel(x, y, QColor::fromHsv(h, colour.hsvSaturation(), colour.value(), 255).rgb());
        }
    }
    return result;
}

QImage saturation(const QImage &image, int s)
{
    QImage result = image.copy();
    for (int x = 0; x < result.width(); ++x) {
        for (int y = 0; y < result.height(); ++y) {
            QColor colour = QColor(result.pixel(x, y)).toHsl();
            colour.setHsl(colour.hslHue(), qBound(0, colour.hslSaturation() + s, 255), colour.lightness(), 255);
            result.setPixel(x, y, colour.rgb());
        }
    }
    return result;
}

QImage warmth(const QImage &image, int w)
{
    QImage result(image.size(), QImage::Format_ARGB32);
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y) {
            const QRgb c = image.pixel(x, y);
            result.setPixel(x, y, qRgba(qBound(0, qRed(c) + w, 255), qBound(0, qGreen(c) + w, 255), qBlue(c), 255));
        }
    }
    return result;
}

QImage colourCube(int step)
{
    QList<QRgb> colours;
    for (int r = 0; r < 256; r += step)
        for (int g = 0; g < 256; g += step)
            for (int b = 0; b < 256; b += step)
                colours << qRgb(r, g, b);
    if (step > 1) {
        for (int i = 0; i < 256; ++i)
            colours << qRgb(i, i, i) << qRgb(i, 255 - i, (i * 7) & 255) << qRgb(255, i, 0) << qRgb(0, 255, i);
    }
    const int width = step == 1 ? 4096 : 512;
    QImage image(width, int((colours.size() + width - 1) / width), QImage::Format_RGB32);
    image.fill(Qt::black);
    for (qsizetype i = 0; i < colours.size(); ++i)
        image.setPixel(int(i % width), int(i / width), colours.at(i));
    return image;
}

} // namespace ReferenceFilters
