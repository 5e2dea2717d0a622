// The live picture's software adjustments, its orientation and its place.
//
// Hue and saturation were once done pixel by pixel with QColor, a third of a
// second per 1080p frame. The colour a pixel gets from either depends on few
// things: its largest and smallest channel, and for saturation its HSL hue.
// Small tables filled by QColor hold what depends on those, and the rest
// repeats QColor's single-precision steps; the tests hold the literal
// per-pixel algorithm and compare over every colour.
#include "framefilters.h"

#include <algorithm>
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

namespace {
bool is32Bit(const QImage &image)
{
    const QImage::Format format = image.format();
    return format == QImage::Format_RGB32 || format == QImage::Format_ARGB32
            || format == QImage::Format_ARGB32_Premultiplied;
}

// The colour filters work on 32-bit pixels as stored; every frame the
// renderer sees is one, and anything else is brought to RGB32 first.
void make32Bit(QImage &image)
{
    if (!is32Bit(image))
        image.convertTo(QImage::Format_RGB32);
}

template<typename PerPixel>
void forEachPixel(QImage &image, PerPixel perPixel)
{
    const int width = image.width();
    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < width; ++x)
            line[x] = perPixel(line[x]);
    }
}

// A translucent premultiplied pixel as Qt's own conversion to RGB32 reads it.
// Frames are opaque; this is the rare way round.
QRgb unpremultiplied(QRgb pixel)
{
    QImage one(1, 1, QImage::Format_ARGB32_Premultiplied);
    one.setPixel(0, 0, pixel);
    return one.convertToFormat(QImage::Format_RGB32).pixel(0, 0);
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

// A channel as QColor holds it in single precision.
struct ChannelFloats
{
    std::array<float, 256> value {};
    ChannelFloats()
    {
        for (int i = 0; i < 256; ++i)
            value[i] = float(i * 0x101) / 65535.0f;
    }
};

// The HSL hue in whole degrees as QColor computes it, for a colour that is
// not grey. The single-precision steps are QColor's own, so the rounding is
// too; for 8-bit channels its fuzzy comparison with the maximum is equality.
// Which channel is largest is chosen by index, not by branch: in a noisy
// picture it changes from pixel to pixel and mispredicts would dominate.
inline int hslHue(int red, int green, int blue, int maximum, int minimum, const ChannelFloats &channel)
{
    const float r = channel.value[red], g = channel.value[green], b = channel.value[blue];
    const float delta = channel.value[maximum] - channel.value[minimum];
    const int which = red == maximum ? 0 : (green == maximum ? 1 : 2);
    const float differences[3] = { g - b, b - r, r - g };
    // 0.0f + x is x but for the sign of a zero, which the rounding below drops.
    static constexpr float offsets[3] = { 0.0f, 2.0f, 4.0f };
    float hue = offsets[which] + differences[which] / delta;
    hue *= 60.0f;
    hue += hue < 0.0f ? 360.0f : 0.0f;
    // Never negative here, where qRound is this.
    return int(hue * 100.0f + 0.5f) / 100;
}

// QColor::fromHsl(h, s, l).rgb() without the QColor: the same single-precision
// steps in the same order, so the same rounding. What depends on the hue
// alone (which of QColor's four cases each channel takes, and its factor) is
// worked out once per hue; the 16- to 8-bit step is QColor's own, tabled.
class HslToRgb
{
public:
    HslToRgb()
    {
        for (int v = 0; v < 65536; ++v)
            eightBit[v] = quint8(QColor(QRgba64::fromRgba64(quint16(v), 0, 0, 0xffff)).red());
        for (int hue = 0; hue < 360; ++hue) {
            const float h = float(hue * 100) / 36000.0f;
            const float temp3[3] = { h + (1.0f / 3.0f), h, h - (1.0f / 3.0f) };
            for (int c = 0; c < 3; ++c) {
                float t = temp3[c];
                if (t < 0.0f)
                    t += 1.0f;
                else if (t > 1.0f)
                    t -= 1.0f;
                const float sixTimes = t * 6.0f;
                Channel &channel = channels[hue][c];
                if (sixTimes < 1.0f) {
                    channel = { Rising, sixTimes };
                } else if (t * 2.0f < 1.0f) {
                    channel = { Top, 0.0f };
                } else if (t * 3.0f < 2.0f) {
                    channel = { Falling, 2.0f / 3.0f - t };
                } else {
                    channel = { Bottom, 0.0f };
                }
            }
        }
        makeLayouts();
    }

    // For a chromatic colour with lightness above 0; at is saturation << 8 | lightness.
    inline QRgb rgbAt(int hue, int at) const
    {
        const Layout &layout = layouts[hue];
        if (!layout.simple)
            return rgb(hue, at >> 8, at & 0xff);
        const Bounds bounds = boundsOf(at >> 8, at & 0xff);
        const int mixed = value(channels[hue][layout.mixedChannel], bounds);
        return 0xff000000u | (quint32(top[at]) << layout.topShift) | (quint32(bottom[at]) << layout.bottomShift)
                | (quint32(mixed) << layout.mixedShift);
    }

    inline QRgb rgb(int hue, int saturation, int lightness) const
    {
        const Bounds bounds = boundsOf(saturation, lightness);
        const auto &hueChannels = channels[hue];
        return qRgb(value(hueChannels[0], bounds), value(hueChannels[1], bounds), value(hueChannels[2], bounds));
    }

    // The channels in single precision, as QColor holds them.
    const ChannelFloats channel;

private:
    enum Case : quint8 { Rising, Top, Falling, Bottom };
    // QColor's temp1 and temp2: the lowest and highest a channel can be.
    struct Bounds
    {
        float low;
        float high;
    };
    struct Channel
    {
        Case kind = Bottom;
        float factor = 0.0f;
    };
    // Most hues have one channel at the top, one at the bottom and one mixed
    // between: the first two come from tables, only the third is computed.
    struct Layout
    {
        bool simple = false;
        int mixedChannel = 0;
        int topShift = 0;
        int bottomShift = 0;
        int mixedShift = 0;
    };

    void makeLayouts()
    {
        for (int s = 0; s < 256; ++s) {
            for (int l = 0; l < 256; ++l) {
                const Bounds bounds = boundsOf(s, l);
                top[(s << 8) | l] = quint8(value({ Top, 0.0f }, bounds));
                bottom[(s << 8) | l] = quint8(value({ Bottom, 0.0f }, bounds));
            }
        }
        for (int hue = 0; hue < 360; ++hue) {
            int tops = 0, bottoms = 0, mixed = 0;
            Layout &layout = layouts[hue];
            for (int c = 0; c < 3; ++c) {
                const int shift = 16 - 8 * c;
                switch (channels[hue][c].kind) {
                case Top:
                    ++tops;
                    layout.topShift = shift;
                    break;
                case Bottom:
                    ++bottoms;
                    layout.bottomShift = shift;
                    break;
                default:
                    ++mixed;
                    layout.mixedChannel = c;
                    layout.mixedShift = shift;
                    break;
                }
            }
            layout.simple = tops == 1 && bottoms == 1 && mixed == 1;
        }
    }

    inline Bounds boundsOf(int saturation, int lightness) const
    {
        const float s = channel.value[saturation];
        const float l = channel.value[lightness];
        const float temp2 = l < 0.5f ? l * (1.0f + s) : l + s - (l * s);
        return { (2.0f * l) - temp2, temp2 };
    }

    // Each of QColor's four cases computed the way it does it; the case is
    // then picked by index rather than by branch.
    inline int value(const Channel &channel, Bounds bounds) const
    {
        const float temp1 = bounds.low, temp2 = bounds.high;
        const float candidates[4] = { temp1 + (temp2 - temp1) * channel.factor, temp2,
                                      temp1 + (temp2 - temp1) * channel.factor * 6.0f, temp1 };
        // QColor's 16-bit value 1 becomes 0; both give 0 in eight bits.
        return eightBit[qRound(candidates[channel.kind] * USHRT_MAX)];
    }

    std::array<quint8, 65536> eightBit {};
    std::array<std::array<Channel, 3>, 360> channels {};
    std::array<Layout, 360> layouts {};
    std::array<quint8, 65536> top {};
    std::array<quint8, 65536> bottom {};
};

const HslToRgb &hslToRgb()
{
    static const HslToRgb converter;
    return converter;
}
} // namespace

void applyTable(QImage &image, const Table &table)
{
    if (image.colorCount() > 0) {
        QList<QRgb> colors = image.colorTable();
        for (QRgb &color : colors)
            color = qRgba(table[qRed(color)], table[qGreen(color)], table[qBlue(color)], 255);
        image.setColorTable(colors);
        return;
    }
    // The table placed at each channel's bits, so a pixel is three look-ups.
    std::array<quint32, 256> red, green, blue;
    for (int i = 0; i < 256; ++i) {
        red[i] = 0xff000000u | (quint32(table[i]) << 16);
        green[i] = quint32(table[i]) << 8;
        blue[i] = quint32(table[i]);
    }
    const auto lookUp = [&](QRgb pixel) { return red[qRed(pixel)] | green[qGreen(pixel)] | blue[qBlue(pixel)]; };
    if (image.format() == QImage::Format_ARGB32_Premultiplied) {
        // Opaque pixels read the same premultiplied or not, so the conversion
        // to RGB32 happens in the same pass; only others are unpremultiplied.
        forEachPixel(image, [&](QRgb pixel) { return qAlpha(pixel) == 255 ? lookUp(pixel) : lookUp(unpremultiplied(pixel)); });
        image.reinterpretAsFormat(QImage::Format_RGB32);
        return;
    }
    if (image.format() == QImage::Format_ARGB32) {
        forEachPixel(image, lookUp);
        image.reinterpretAsFormat(QImage::Format_RGB32);
        return;
    }
    if (image.format() != QImage::Format_RGB32)
        image.convertTo(QImage::Format_RGB32);
    forEachPixel(image, lookUp);
}

void applyBrightness(QImage &image, int value)
{
    applyTable(image, brightnessTable(value));
}

void applyContrast(QImage &image, int value)
{
    if (value == -100)
        return;
    // The first step away from 0 jumps to a factor of about 2; intended.
    applyTable(image, contrastTable(value + 200));
}

void applyGamma(QImage &image, int value)
{
    applyTable(image, gammaTable(value + 100));
}

void applyHue(QImage &image, int h)
{
    // Every pixel takes the one hue and keeps its HSV saturation and value.
    // Frames are painted on the GUI thread only; the table follows the value.
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
    make32Bit(image);
    forEachPixel(image, [](QRgb pixel) {
        const int r = qRed(pixel), g = qGreen(pixel), b = qBlue(pixel);
        return tinted[pairIndex(qMax(qMax(r, g), b), qMin(qMin(r, g), b))];
    });
}

void applySaturation(QImage &image, int s)
{
    const PairTables &pairs = pairTables();
    const HslToRgb &hsl = hslToRgb();
    // Per channel pair: the new saturation and the lightness, packed as
    // saturation << 8 | lightness. GUI thread only, like applyHue.
    static int tableShift = 0;
    static bool targetMade = false;
    static std::array<quint16, 65536> target;
    if (!targetMade || tableShift != s) {
        for (int at = 0; at < 65536; ++at)
            target[at] = quint16((qBound(0, pairs.hslSaturation[at] + s, 255) << 8) | pairs.lightness[at]);
        tableShift = s;
        targetMade = true;
    }
    make32Bit(image);
    forEachPixel(image, [&hsl](QRgb pixel) {
        const int r = qRed(pixel), g = qGreen(pixel), b = qBlue(pixel);
        const int maximum = qMax(qMax(r, g), b);
        const int minimum = qMin(qMin(r, g), b);
        const int at = target[pairIndex(maximum, minimum)];
        // A grey, a colour whose saturation drops to 0, or black keeps only
        // its lightness.
        if (maximum == minimum || at < 256 || (at & 0xff) == 0) {
            const int grey = at & 0xff;
            return qRgb(grey, grey, grey);
        }
        return hsl.rgbAt(hslHue(r, g, b, maximum, minimum, hsl.channel), at);
    });
}

void applyWarmth(QImage &image, int w)
{
    std::array<quint32, 256> red, green;
    for (int i = 0; i < 256; ++i) {
        red[i] = 0xff000000u | (quint32(qBound(0, i + w, 255)) << 16);
        green[i] = quint32(qBound(0, i + w, 255)) << 8;
    }
    make32Bit(image);
    // Blue is left alone on purpose: warmer toward yellow, cooler away.
    forEachPixel(image, [&](QRgb pixel) { return red[qRed(pixel)] | green[qGreen(pixel)] | quint32(qBlue(pixel)); });
}

void adjust(QImage &image, const PictureAdjustments &values)
{
    if (values.brightness)
        applyBrightness(image, values.brightness);
    if (values.contrast)
        applyContrast(image, values.contrast);
    if (values.gamma)
        applyGamma(image, values.gamma);
    if (values.hue)
        applyHue(image, values.hue);
    if (values.saturation)
        applySaturation(image, values.saturation);
    if (values.whiteBalance)
        applyWarmth(image, values.whiteBalance);
    // Backlight, gain and exposure reuse the brightness step and stack.
    if (values.backlight)
        applyBrightness(image, values.backlight);
    if (values.gain)
        applyBrightness(image, values.gain);
    if (values.exposure)
        applyBrightness(image, values.exposure);
}

namespace {
template<typename Apply>
QImage onCopy(const QImage &image, int value, Apply apply)
{
    QImage result = image.copy();
    apply(result, value);
    return result;
}
}

QImage brightness(const QImage &image, int value) { return onCopy(image, value, applyBrightness); }
QImage contrast(const QImage &image, int value) { return onCopy(image, value, applyContrast); }
QImage gamma(const QImage &image, int value) { return onCopy(image, value, applyGamma); }
QImage hue(const QImage &image, int h) { return onCopy(image, h, applyHue); }
QImage saturation(const QImage &image, int s) { return onCopy(image, s, applySaturation); }
QImage warmth(const QImage &image, int w) { return onCopy(image, w, applyWarmth); }

QImage adjusted(const QImage &image, const PictureAdjustments &values)
{
    QImage result = image.copy();
    adjust(result, values);
    return result;
}

void warmUpColourTables()
{
    pairTables();
    hslToRgb();
}

QRgb hslToRgb(int hue, int saturation, int lightness)
{
    if (hue < 0 || saturation == 0 || lightness == 0)
        return QColor::fromHsl(hue, saturation, lightness, 255).rgb();
    return hslToRgb().rgb(hue % 360, saturation, lightness);
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
