// The live picture's software adjustments, its orientation and its place.
//
// Hue and saturation were once done pixel by pixel with QColor, a third of a
// second per 1080p frame. The colour a pixel gets from either depends on few
// things: its largest and smallest channel, and for saturation its HSL hue.
// Small tables filled by QColor hold what depends on those, and the rest
// repeats QColor's single-precision steps; the tests hold the literal
// per-pixel algorithm and compare over every colour. Every filter on at once
// is still one pass over the frame: the channel tables around the colour
// step are composed, and what follows hue is folded into its table.
#include "framefilters.h"

#include <atomic>
#include <cmath>
#include <cstring>
#include <optional>
#include <utility>

#include <QColor>
#include <QMutex>
#include <QPainter>
#include <QTransform>

#include "framefilterkernels.h"

namespace FrameFilters {

QImage orient(const QImage &image, int mode)
{
    QImage oriented = image;
    orientInPlace(oriented, mode);
    return oriented;
}

Mirrors mirrorsOf(int mode)
{
    // A half turn is both mirrors, pixel for pixel; the half turn and then
    // the flip top to bottom leave the mirror left to right.
    switch (mode) {
    case 1:
        return { true, true };
    case 2:
        return { false, true };
    case 3:
        return { true, false };
    default:
        return {};
    }
}

void orientInPlace(QImage &image, int mode)
{
    const Mirrors mirrors = mirrorsOf(mode);
    if (mirrors.horizontal || mirrors.vertical)
        image.mirror(mirrors.horizontal, mirrors.vertical);
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
using FrameFilterKernels::ChannelTables;
using FrameFilterKernels::Kernels;

const Kernels *kernelsOf(FrameFilters::Loops loops)
{
    switch (loops) {
    case FrameFilters::Loops::Portable:
        return &FrameFilterKernels::portable();
    case FrameFilters::Loops::Avx2:
        return FrameFilterKernels::avx2();
    case FrameFilters::Loops::Avx512:
        return FrameFilterKernels::avx512();
    }
    return nullptr;
}

std::atomic<const Kernels *> chosenKernels { nullptr };

const Kernels &kernels()
{
    if (const Kernels *chosen = chosenKernels.load())
        return *chosen;
    static const Kernels *const fastest = kernelsOf(FrameFilters::availableLoops().constLast());
    return *fastest;
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

Table identityTable()
{
    Table table;
    for (int i = 0; i < 256; ++i)
        table[i] = i;
    return table;
}

// What each channel becomes in a run of filters that treat channels apart.
struct ChannelSteps
{
    Table red = identityTable();
    Table green = identityTable();
    Table blue = identityTable();

    void then(const Table &r, const Table &g, const Table &b)
    {
        for (int i = 0; i < 256; ++i) {
            red[i] = r[red[i]];
            green[i] = g[green[i]];
            blue[i] = b[blue[i]];
        }
    }

    bool operator==(const ChannelSteps &other) const
    {
        return red == other.red && green == other.green && blue == other.blue;
    }
    bool operator!=(const ChannelSteps &other) const { return !(*this == other); }

    // Brightness and warmth only add to a channel and clamp; when the steps
    // come to that, the amounts at each channel's bits, raising and lowering.
    std::optional<std::pair<quint32, quint32>> asShifts() const
    {
        quint32 raise = 0, lower = 0;
        const std::pair<const Table *, int> channels[] = { { &red, 16 }, { &green, 8 }, { &blue, 0 } };
        for (const auto &[table, at] : channels) {
            const int amount = (*table)[0] > 0 ? (*table)[0] : (*table)[255] - 255;
            for (int i = 0; i < 256; ++i) {
                if ((*table)[i] != qBound(0, i + amount, 255))
                    return std::nullopt;
            }
            (amount > 0 ? raise : lower) |= quint32(qAbs(amount)) << at;
        }
        return std::make_pair(raise, lower);
    }
};

// The steps as the kernels read them, each entry at its channel's bits.
class PackedSteps
{
public:
    explicit PackedSteps(const ChannelSteps &steps)
    {
        for (int i = 0; i < 256; ++i) {
            red[i] = 0xff000000u | (quint32(steps.red[i]) << 16);
            green[i] = quint32(steps.green[i]) << 8;
            blue[i] = quint32(steps.blue[i]);
            bytes[i] = steps.blue[i];
            bytes[256 + i] = steps.green[i];
            bytes[512 + i] = steps.red[i];
        }
    }

    ChannelTables tables() const { return { red.data(), green.data(), blue.data(), bytes.data() }; }

private:
    std::array<quint32, 256> red, green, blue;
    std::array<quint8, 768> bytes;
};

// A run of filters as at most three passes' worth of work done in one: the
// channel steps before the colour step, the colour step (hue, saturation or
// both), and the channel steps after it.
class Plan
{
public:
    void addTable(const Table &table) { addSteps(table, table, table, true); }

    void addWarmth(int w)
    {
        Table warmer;
        for (int i = 0; i < 256; ++i)
            warmer[i] = qBound(0, i + w, 255);
        // Blue is left alone on purpose: warmer toward yellow, cooler away.
        addSteps(warmer, warmer, identityTable(), false);
    }

    void addHue(int h)
    {
        // Hue always comes before saturation, so the two fold into one table.
        Q_ASSERT(!saturation);
        noteFilter(false);
        hue = h;
    }

    void addSaturation(int s)
    {
        noteFilter(false);
        saturation = s;
    }

    bool isEmpty() const { return empty; }
    bool startsWithTable() const { return tableFirst; }
    bool hasColourStep() const { return hue || saturation; }

    std::optional<ChannelSteps> before;
    std::optional<ChannelSteps> after;
    std::optional<int> hue;
    std::optional<int> saturation;

private:
    void noteFilter(bool table)
    {
        if (empty)
            tableFirst = table;
        empty = false;
    }

    void addSteps(const Table &r, const Table &g, const Table &b, bool table)
    {
        noteFilter(table);
        std::optional<ChannelSteps> &steps = hasColourStep() ? after : before;
        if (!steps)
            steps.emplace();
        steps->then(r, g, b);
    }

    bool empty = true;
    // The first filter decides how a translucent premultiplied pixel is read:
    // a table filter converts the picture to RGB32 first, the colour filters
    // take the stored values.
    bool tableFirst = false;
};

// The colour-step tables of the last values, kept while the sliders rest.
class ColourTables
{
public:
    // Per channel pair: the new saturation << 8 | the lightness, and the
    // top and bottom channel values those give, as the kernels read them.
    const quint32 *target(int s)
    {
        if (!targetShift || *targetShift != s) {
            const PairTables &pairs = pairTables();
            const quint16 *topAndBottom = FrameFilterKernels::hslTables().topAndBottom;
            for (int pair = 0; pair < 65536; ++pair) {
                const bool grey = (pair >> 8) == (pair & 0xff);
                const int saturation = grey ? 0 : qBound(0, pairs.hslSaturation[pair] + s, 255);
                const int at = (saturation << 8) | pairs.lightness[pair];
                targetTable[pair] = quint32(at) | quint32(topAndBottom[at]) << 16;
            }
            targetShift = s;
        }
        return targetTable.data();
    }

    // Per channel pair: the hue's tint, then saturation and the later steps.
    const quint32 *pairs(const Plan &plan, const Kernels &kernels)
    {
        if (tintHue != plan.hue) {
            // Every pixel takes the one hue and keeps its HSV saturation and value.
            const PairTables &pairs = pairTables();
            for (int maximum = 0; maximum < 256; ++maximum) {
                for (int minimum = 0; minimum <= maximum; ++minimum) {
                    const int at = pairIndex(maximum, minimum);
                    tinted[at] = QColor::fromHsv(*plan.hue, pairs.hsvSaturation[at], pairs.hsvValue[maximum], 255).rgb();
                }
            }
            tintHue = plan.hue;
            pairsHue.reset();
        }
        if (pairsHue != plan.hue || pairsSaturation != plan.saturation || pairsAfter != plan.after) {
            pairTable = tinted;
            const std::optional<PackedSteps> after = packed(plan.after);
            const ChannelTables afterTables = after ? after->tables() : ChannelTables();
            if (plan.saturation)
                kernels.saturate(pairTable.data(), pairTable.size(), nullptr, target(*plan.saturation), after ? &afterTables : nullptr);
            else if (after)
                kernels.mapChannels(pairTable.data(), pairTable.size(), afterTables);
            pairsHue = plan.hue;
            pairsSaturation = plan.saturation;
            pairsAfter = plan.after;
        }
        return pairTable.data();
    }

    static std::optional<PackedSteps> packed(const std::optional<ChannelSteps> &steps)
    {
        return steps ? std::optional<PackedSteps>(std::in_place, *steps) : std::nullopt;
    }

private:
    std::optional<int> targetShift;
    std::array<quint32, 65536> targetTable {};
    // Empty until the first tint; -1 is a hue of its own (grey).
    std::optional<int> tintHue;
    std::array<quint32, 65536> tinted {};
    std::optional<int> pairsHue;
    std::optional<int> pairsSaturation;
    std::optional<ChannelSteps> pairsAfter;
    std::array<quint32, 65536> pairTable {};
};

// The plan made ready for the kernels; valid while the tables' lock is held.
class Pass
{
public:
    Pass(const Plan &plan, ColourTables &colourTables, const Kernels &kernels)
        : kernels(kernels), before(ColourTables::packed(plan.before)), after(ColourTables::packed(plan.after))
    {
        if (plan.hue)
            pairs = colourTables.pairs(plan, kernels);
        else if (plan.saturation)
            target = colourTables.target(*plan.saturation);
        else if (plan.before && kernels.shiftChannels)
            shifts = plan.before->asShifts();
        beforeTables = before ? before->tables() : ChannelTables();
        afterTables = after ? after->tables() : ChannelTables();
    }

    void run(quint32 *pixels, std::size_t count) const
    {
        const ChannelTables *first = before ? &beforeTables : nullptr;
        if (pairs)
            kernels.mapPairs(pixels, count, first, pairs);
        else if (target)
            kernels.saturate(pixels, count, first, target, after ? &afterTables : nullptr);
        else if (shifts)
            kernels.shiftChannels(pixels, count, shifts->first, shifts->second);
        else if (first)
            kernels.mapChannels(pixels, count, *first);
    }

private:
    const Kernels &kernels;
    std::optional<PackedSteps> before;
    std::optional<PackedSteps> after;
    ChannelTables beforeTables;
    ChannelTables afterTables;
    const quint32 *pairs = nullptr;
    const quint32 *target = nullptr;
    std::optional<std::pair<quint32, quint32>> shifts;
};

QMutex tablesLock;

ColourTables &colourTables()
{
    static ColourTables tables;
    return tables;
}

// Opaque pixels read the same premultiplied or not; a line with others is
// read as Qt's own conversion to RGB32 reads it. Frames are opaque; this is
// the rare way round.
void unpremultiplyTranslucent(quint32 *line, int width, const Kernels &kernels)
{
    if (kernels.allOpaque(line, std::size_t(width)))
        return;
    const QImage premultiplied(reinterpret_cast<const uchar *>(line), width, 1, QImage::Format_ARGB32_Premultiplied);
    const QImage converted = premultiplied.convertToFormat(QImage::Format_RGB32);
    std::memcpy(line, converted.constBits(), size_t(width) * 4);
}

void run(QImage &image, const Plan &plan)
{
    if (plan.isEmpty())
        return;
    QMutexLocker locker(&tablesLock);
    const Kernels &loops = kernels();
    const Pass pass(plan, colourTables(), loops);
    if (image.colorCount() > 0 && plan.startsWithTable()) {
        // The first filter makes every entry opaque, so an indexed picture
        // only needs its colours changed.
        QList<QRgb> colours = image.colorTable();
        pass.run(colours.data(), std::size_t(colours.size()));
        image.setColorTable(colours);
        return;
    }
    const QImage::Format format = image.format();
    if (format != QImage::Format_RGB32 && format != QImage::Format_ARGB32 && format != QImage::Format_ARGB32_Premultiplied)
        image.convertTo(QImage::Format_RGB32);
    const bool unpremultiply = plan.startsWithTable() && format == QImage::Format_ARGB32_Premultiplied;
    const int width = image.width();
    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<quint32 *>(image.scanLine(y));
        if (!unpremultiply) {
            pass.run(line, std::size_t(width));
            continue;
        }
        // Looked at and filtered a piece at a time, so that each piece is
        // still in the cache when the filter reads it.
        for (int x = 0; x < width; x += 512) {
            const int count = qMin(512, width - x);
            unpremultiplyTranslucent(line + x, count, loops);
            pass.run(line + x, std::size_t(count));
        }
    }
    // Every pixel is opaque now.
    image.reinterpretAsFormat(QImage::Format_RGB32);
}

template<typename Add>
void runOne(QImage &image, Add add)
{
    Plan plan;
    add(plan);
    run(image, plan);
}
} // namespace

void applyBrightness(QImage &image, int value)
{
    runOne(image, [value](Plan &plan) { plan.addTable(brightnessTable(value)); });
}

void applyContrast(QImage &image, int value)
{
    if (value == -100)
        return;
    // The first step away from 0 jumps to a factor of about 2; intended.
    runOne(image, [value](Plan &plan) { plan.addTable(contrastTable(value + 200)); });
}

void applyGamma(QImage &image, int value)
{
    runOne(image, [value](Plan &plan) { plan.addTable(gammaTable(value + 100)); });
}

void applyHue(QImage &image, int h)
{
    runOne(image, [h](Plan &plan) { plan.addHue(h); });
}

void applySaturation(QImage &image, int s)
{
    runOne(image, [s](Plan &plan) { plan.addSaturation(s); });
}

void applyWarmth(QImage &image, int w)
{
    runOne(image, [w](Plan &plan) { plan.addWarmth(w); });
}

void adjust(QImage &image, const PictureAdjustments &values)
{
    // One pass whatever is on: the filters keep their fixed order inside it.
    Plan plan;
    if (values.brightness)
        plan.addTable(brightnessTable(values.brightness));
    if (values.contrast && values.contrast != -100)
        plan.addTable(contrastTable(values.contrast + 200));
    if (values.gamma)
        plan.addTable(gammaTable(values.gamma + 100));
    if (values.hue)
        plan.addHue(values.hue);
    if (values.saturation)
        plan.addSaturation(values.saturation);
    if (values.whiteBalance)
        plan.addWarmth(values.whiteBalance);
    // Backlight, gain and exposure reuse the brightness step and stack.
    for (int value : { values.backlight, values.gain, values.exposure }) {
        if (value)
            plan.addTable(brightnessTable(value));
    }
    run(image, plan);
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
    FrameFilterKernels::warmUp();
}

QList<Loops> availableLoops()
{
    QList<Loops> loops;
    for (const Loops each : { Loops::Portable, Loops::Avx2, Loops::Avx512 }) {
        if (kernelsOf(each))
            loops.append(each);
    }
    return loops;
}

void useLoops(Loops loops)
{
    chosenKernels = kernelsOf(loops);
}

QString loopsName(Loops loops)
{
    switch (loops) {
    case Loops::Portable:
        return QStringLiteral("portable");
    case Loops::Avx2:
        return QStringLiteral("AVX2");
    case Loops::Avx512:
        return QStringLiteral("AVX-512");
    }
    return QString();
}

QRgb hslToRgb(int hue, int saturation, int lightness)
{
    if (hue < 0 || saturation == 0 || lightness == 0)
        return QColor::fromHsl(hue, saturation, lightness, 255).rgb();
    return FrameFilterKernels::hslToRgb(hue % 360, saturation, lightness);
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

void scaledForView(const QImage &image, const QSize &size, QImage &scaled)
{
    if (scaled.size() != size || scaled.format() != QImage::Format_RGB32 || !scaled.isDetached())
        scaled = QImage(size, QImage::Format_RGB32);
    QPainter painter(&scaled);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(QRect(QPoint(0, 0), size), image, image.rect());
}

} // namespace FrameFilters
