// The live picture's software adjustments, its orientation and its place.
#include "framefilters.h"

#include <algorithm>
#include <cmath>
#include <vector>

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

namespace {
// The colour filters work on 32-bit pixels as stored; every frame the
// renderer sees is one, and anything else is brought to RGB32 first.
QImage as32Bit(const QImage &image)
{
    switch (image.format()) {
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32:
    case QImage::Format_ARGB32_Premultiplied:
        return image.copy();
    default:
        return image.convertToFormat(QImage::Format_RGB32);
    }
}

inline int pairIndex(int maximum, int minimum)
{
    return (maximum << 8) | minimum;
}

// HSV saturation and value, and HSL saturation and lightness, of a colour
// depend only on its largest and smallest channel: one entry per pair,
// filled by QColor itself.
struct PairTables
{
    std::array<quint8, 65536> hsvSaturation {};
    std::array<quint8, 256> hsvValue {};
    std::array<quint8, 65536> hslSaturation {};
    std::array<quint8, 65536> lightness {};

    PairTables()
    {
        for (int maximum = 0; maximum < 256; ++maximum) {
            hsvValue[maximum] = quint8(QColor(maximum, maximum, maximum).value());
            for (int minimum = 0; minimum <= maximum; ++minimum) {
                const QColor colour(maximum, minimum, minimum);
                hsvSaturation[pairIndex(maximum, minimum)] = quint8(colour.hsvSaturation());
                int h, s, l;
                colour.getHsl(&h, &s, &l);
                hslSaturation[pairIndex(maximum, minimum)] = quint8(s);
                lightness[pairIndex(maximum, minimum)] = quint8(l);
            }
        }
    }
};

const PairTables &pairTables()
{
    static const PairTables tables;
    return tables;
}

// The HSL hue in whole degrees as QColor computes it, -1 for a grey. The
// single-precision steps are QColor's own, so the rounding is too.
inline int hslHue(int red, int green, int blue)
{
    const float r = float(red * 0x101) / 65535.0f;
    const float g = float(green * 0x101) / 65535.0f;
    const float b = float(blue * 0x101) / 65535.0f;
    const float maximum = qMax(qMax(r, g), b);
    const float minimum = qMin(qMin(r, g), b);
    const float delta = maximum - minimum;
    if (qFuzzyIsNull(delta))
        return -1;
    float hue;
    if (qFuzzyCompare(r, maximum))
        hue = (g - b) / delta;
    else if (qFuzzyCompare(g, maximum))
        hue = 2.0f + (b - r) / delta;
    else
        hue = 4.0f + (r - g) / delta;
    hue *= 60.0f;
    if (hue < 0.0f)
        hue += 360.0f;
    return qRound(hue * 100.0f) / 100;
}

// QColor::fromHsl(h, s, l) for every hue, saturation and lightness. Of the
// three channels at a hue, those that equal the pure maximum or minimum
// channel for every saturation and lightness share one table each; only the
// channel that is mixed between them keeps a table of its own. Each table is
// made by QColor, and the sharing is checked entry by entry while it is made.
class HslTables
{
public:
    enum Source : quint8 { Maximum, Minimum, Own };

    HslTables()
    {
        for (int s = 0; s < 256; ++s) {
            for (int l = 0; l < 256; ++l) {
                const QRgb rgb = QColor::fromHsl(0, s, l, 255).rgb();
                maximum[index(s, l)] = quint8(qRed(rgb));
                minimum[index(s, l)] = quint8(qGreen(rgb));
            }
        }
        for (int hue = 0; hue < 360; ++hue) {
            std::array<std::vector<quint8>, 3> channels;
            for (auto &channel : channels)
                channel.resize(65536);
            for (int s = 0; s < 256; ++s) {
                for (int l = 0; l < 256; ++l) {
                    const QRgb rgb = QColor::fromHsl(hue, s, l, 255).rgb();
                    channels[0][index(s, l)] = quint8(qRed(rgb));
                    channels[1][index(s, l)] = quint8(qGreen(rgb));
                    channels[2][index(s, l)] = quint8(qBlue(rgb));
                }
            }
            for (int c = 0; c < 3; ++c) {
                if (std::equal(channels[c].begin(), channels[c].end(), maximum.begin())) {
                    sources[hue][c] = Maximum;
                } else if (std::equal(channels[c].begin(), channels[c].end(), minimum.begin())) {
                    sources[hue][c] = Minimum;
                } else {
                    sources[hue][c] = Own;
                    own[hue][c] = std::move(channels[c]);
                }
            }
        }
    }

    static int index(int s, int l) { return (s << 8) | l; }

    inline int channel(int hue, int c, int at) const
    {
        switch (sources[hue][c]) {
        case Maximum:
            return maximum[at];
        case Minimum:
            return minimum[at];
        default:
            return own[hue][c][at];
        }
    }

private:
    std::array<quint8, 65536> maximum {};
    std::array<quint8, 65536> minimum {};
    std::array<std::array<Source, 3>, 360> sources {};
    std::array<std::array<std::vector<quint8>, 3>, 360> own;
};

const HslTables &hslTables()
{
    static const HslTables tables;
    return tables;
}
} // namespace

void warmUpColourTables()
{
    pairTables();
    hslTables();
}

QImage hue(const QImage &image, int h)
{
    // Every pixel takes the one hue and keeps its HSV saturation and value:
    // the result depends on the largest and smallest channel alone.
    const PairTables &pairs = pairTables();
    static int tableHue = -1;
    static std::array<QRgb, 65536> tinted;
    if (tableHue != h) {
        for (int maximum = 0; maximum < 256; ++maximum) {
            for (int minimum = 0; minimum <= maximum; ++minimum) {
                const int at = pairIndex(maximum, minimum);
                tinted[at] = QColor::fromHsv(h, pairs.hsvSaturation[at], pairs.hsvValue[maximum], 255).rgb();
            }
        }
        tableHue = h;
    }

    QImage result = as32Bit(image);
    for (int y = 0; y < result.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(result.scanLine(y));
        for (int x = 0, width = result.width(); x < width; ++x) {
            const int r = qRed(line[x]), g = qGreen(line[x]), b = qBlue(line[x]);
            line[x] = tinted[pairIndex(qMax(qMax(r, g), b), qMin(qMin(r, g), b))];
        }
    }
    return result;
}

QImage saturation(const QImage &image, int s)
{
    const PairTables &pairs = pairTables();
    const HslTables &hsl = hslTables();
    // The new saturation and the lightness of each channel pair, packed as
    // the index into the HSL tables.
    static int tableShift = 0;
    static std::array<quint16, 65536> target;
    static bool targetMade = false;
    if (!targetMade || tableShift != s) {
        for (int at = 0; at < 65536; ++at)
            target[at] = quint16(HslTables::index(qBound(0, pairs.hslSaturation[at] + s, 255), pairs.lightness[at]));
        tableShift = s;
        targetMade = true;
    }

    QImage result = as32Bit(image);
    for (int y = 0; y < result.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(result.scanLine(y));
        for (int x = 0, width = result.width(); x < width; ++x) {
            const int r = qRed(line[x]), g = qGreen(line[x]), b = qBlue(line[x]);
            const int maximum = qMax(qMax(r, g), b);
            const int minimum = qMin(qMin(r, g), b);
            const int at = target[pairIndex(maximum, minimum)];
            const int hue = maximum == minimum ? -1 : hslHue(r, g, b);
            if (hue < 0 || (at >> 8) == 0) {
                const int grey = at & 0xff;
                line[x] = qRgb(grey, grey, grey);
            } else {
                line[x] = qRgb(hsl.channel(hue, 0, at), hsl.channel(hue, 1, at), hsl.channel(hue, 2, at));
            }
        }
    }
    return result;
}

QImage warmth(const QImage &image, int w)
{
    Table shifted;
    for (int i = 0; i < 256; ++i)
        shifted[i] = qBound(0, i + w, 255);
    const QImage source = as32Bit(image);
    QImage result(source.size(), QImage::Format_ARGB32);
    for (int y = 0; y < source.height(); ++y) {
        const auto *in = reinterpret_cast<const QRgb *>(source.constScanLine(y));
        auto *out = reinterpret_cast<QRgb *>(result.scanLine(y));
        // Blue is left alone on purpose: warmer toward yellow, cooler away.
        for (int x = 0, width = source.width(); x < width; ++x)
            out[x] = qRgba(shifted[qRed(in[x])], shifted[qGreen(in[x])], qBlue(in[x]), 255);
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
