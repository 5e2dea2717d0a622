// The portable per-pixel loops, and the choice of the vector ones.
//
// The saturation step once went through QColor for every pixel. The colour
// it gives depends on the pixel's HSL hue, which is computed here with
// QColor's own single-precision steps, and on the new saturation and the
// lightness; what depends on the hue alone is worked out once per hue.
#include "framefilterkernels.h"

#include <array>
#include <climits>
#include <cmath>

#include <QColor>

#if defined(ORVIX_VECTOR_KERNELS) && defined(_MSC_VER)
#include <intrin.h>
#endif

namespace FrameFilterKernels {

#if defined(ORVIX_VECTOR_KERNELS)
// In the AVX2 and AVX-512 files; only called once the processor is known to
// have what they need.
const Kernels &avx2Kernels();
const Kernels &avx512Kernels();
#endif

namespace {
using std::uint32_t;

inline int pairIndex(int maximum, int minimum)
{
    return (maximum << 8) | minimum;
}

// A hue's code in HueCodes.
inline int hueCode(int hue)
{
    const int product = hue * 1093;
    return (product >> 16) + ((product & 0xffff) < 1093 ? 8 : 0);
}

// QColor rounds a channel to 16 bits and then to 8. For every value the
// mixed channels can take (all hues, saturations and lightnesses; the tests
// go through them) rounding straight to 8 bits with just under a half gives
// the same, in fewer steps for the vector loops.
inline int roundedToEightBits(float value)
{
    return int(value * 255.0f + (0.5f - 0x1p-25f));
}

inline uint32_t mapped(uint32_t pixel, const ChannelTables &tables)
{
    return tables.red[(pixel >> 16) & 0xff] | tables.green[(pixel >> 8) & 0xff] | tables.blue[pixel & 0xff];
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
        const quint32 layout = packedLayouts[hue];
        const Bounds bounds = boundsOf(at >> 8, at & 0xff);
        const int mixed = mix(bounds, mixedFactors[hue], (layout & falling) ? 6.0f : 1.0f);
        const quint32 source = quint32(mixed) | quint32(topAndBottom[at]) << 16;
        const auto byte = [source, layout](int k) { return (source >> (8 * ((layout >> (8 * k)) & 3))) & 0xff; };
        return 0xff000000u | byte(2) << 16 | byte(1) << 8 | byte(0);
    }

    HslTables tables() const
    {
        return { packedLayouts.data(), mixedFactors.data(), topAndBottom.data(), &codes };
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
    static constexpr quint32 falling = 0x10u << 24;

    void makeLayouts()
    {
        for (int at = 0; at < 65536; ++at) {
            const Bounds bounds = boundsOf(at >> 8, at & 0xff);
            topAndBottom[at] = quint16(value({ Top, 0.0f }, bounds) | value({ Bottom, 0.0f }, bounds) << 8);
        }
        for (int hue = 0; hue < 360; ++hue)
            packLayout(hue);
        makeCodes();
    }

    // A sector's layout is read off its middle hue, where QColor's cases are
    // clear; its first hue has a code of its own.
    void makeCodes()
    {
        for (int code = 0; code < 16; ++code) {
            const int hue = code < 8 ? code * 60 + 30 : (code - 8) * 60;
            if (hue >= 360)
                continue;
            codes.layouts[code] = packedLayouts[hue];
            codes.scales[code] = (packedLayouts[hue] & falling) ? 6.0f : 1.0f;
        }

        // From here on every loop reads the layouts as the codes give them,
        // so the tests of each, and of hslToRgb(), go through the codes.
        for (int hue = 0; hue < 360; ++hue)
            packedLayouts[hue] = codes.layouts[hueCode(hue)];
    }

    // Every hue has one channel at the top, one at the bottom and one mixed
    // between: the first two come from a table, only the third is computed.
    // A channel whose case gives temp1 exactly, by a factor of 0, counts as
    // at the bottom. Hue 180 has a falling and a rising channel over one at
    // the bottom; the rising one's factor is just under 1, and for every
    // saturation and lightness it comes out as the top value (the tests go
    // through them all), so it counts as at the top.
    void packLayout(int hue)
    {
        const auto &hueChannels = channels[hue];
        const auto atTop = [&hueChannels](int c) {
            return hueChannels[c].kind == Top
                    || (hueChannels[c].kind == Rising && hueChannels[c].factor >= std::nextafter(1.0f, 0.0f));
        };
        const auto atBottom = [&hueChannels](int c) {
            return hueChannels[c].kind == Bottom || (hueChannels[c].kind != Top && hueChannels[c].factor == 0.0f);
        };
        int topChannel = 0;
        while (!atTop(topChannel))
            ++topChannel;
        const int first = topChannel == 0 ? 1 : 0;
        const int second = topChannel == 2 ? 1 : 2;
        Q_ASSERT(atBottom(first) || atBottom(second));
        const int bottomChannel = atBottom(first) ? first : second;
        const int mixedChannel = bottomChannel == first ? second : first;
        const Channel &mixed = hueChannels[mixedChannel];
        // Red, green and blue are the pixel's bytes 2, 1 and 0.
        const auto from = [](int c, quint32 source) { return source << (8 * (2 - c)); };
        packedLayouts[hue] = from(topChannel, 2) | from(bottomChannel, 3) | from(mixedChannel, 0) | 0x80u << 24
                | (mixed.kind == Falling ? falling : 0u);
        mixedFactors[hue] = mixed.kind == Bottom ? 0.0f : mixed.factor;
    }

    // A rising or falling channel: x * 1.0f is x, so a rising one gets
    // QColor's bits as well.
    inline int mix(Bounds bounds, float factor, float scale) const
    {
        return roundedToEightBits(bounds.low + (bounds.high - bounds.low) * factor * scale);
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
    std::array<quint32, 360> packedLayouts {};
    std::array<float, 360> mixedFactors {};
    HueCodes codes {};
    std::array<quint16, 65536> topAndBottom {};
};

const HslToRgb &converter()
{
    static const HslToRgb instance;
    return instance;
}

bool allOpaque(const uint32_t *pixels, std::size_t count)
{
    uint32_t all = 0xffffffffu;
    for (std::size_t i = 0; i < count; ++i)
        all &= pixels[i];
    return (all >> 24) == 0xff;
}

void mapChannels(uint32_t *pixels, std::size_t count, const ChannelTables &tables)
{
    for (std::size_t i = 0; i < count; ++i)
        pixels[i] = mapped(pixels[i], tables);
}

void mapPairs(uint32_t *pixels, std::size_t count, const ChannelTables *before, const uint32_t *pairs)
{
    for (std::size_t i = 0; i < count; ++i) {
        const uint32_t pixel = before ? mapped(pixels[i], *before) : pixels[i];
        const int r = qRed(pixel), g = qGreen(pixel), b = qBlue(pixel);
        pixels[i] = pairs[pairIndex(qMax(qMax(r, g), b), qMin(qMin(r, g), b))];
    }
}

void saturate(uint32_t *pixels, std::size_t count, const ChannelTables *before, const uint32_t *target,
              const ChannelTables *after)
{
    const HslToRgb &hsl = converter();
    for (std::size_t i = 0; i < count; ++i) {
        const uint32_t pixel = before ? mapped(pixels[i], *before) : pixels[i];
        const int r = qRed(pixel), g = qGreen(pixel), b = qBlue(pixel);
        const int maximum = qMax(qMax(r, g), b);
        const int minimum = qMin(qMin(r, g), b);
        const int at = int(target[pairIndex(maximum, minimum)] & 0xffff);
        uint32_t result;
        // A grey, a colour whose saturation drops to 0, or black keeps only
        // its lightness.
        if (maximum == minimum || at < 256 || (at & 0xff) == 0) {
            const int grey = at & 0xff;
            result = qRgb(grey, grey, grey);
        } else {
            result = hsl.rgbAt(hslHue(r, g, b, maximum, minimum, hsl.channel), at);
        }
        pixels[i] = after ? mapped(result, *after) : result;
    }
}

#if defined(ORVIX_VECTOR_KERNELS)
// Which vector instructions the processor has and the system saves with
// each thread: AVX2 with FMA, and AVX-512 with its byte and word
// instructions and byte permutes.
struct VectorSupport
{
    bool avx2 = false;
    bool avx512 = false;

    VectorSupport()
    {
#if defined(_MSC_VER)
        int info[4];
        __cpuid(info, 1);
        if (!(info[2] & (1 << 27)) || !(info[2] & (1 << 28)) || !(info[2] & (1 << 12)))
            return;
        const unsigned long long saved = _xgetbv(0);
        __cpuidex(info, 7, 0);
        avx2 = (saved & 0x6) == 0x6 && (info[1] & (1 << 5));
        // The opmask and upper register state as well as the AVX state.
        avx512 = avx2 && (saved & 0xe6) == 0xe6 && (info[1] & (1 << 16)) && (info[1] & (1 << 30)) && (info[2] & (1 << 1));
#else
        avx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
        avx512 = avx2 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw")
                && __builtin_cpu_supports("avx512vbmi");
#endif
    }
};

const VectorSupport &vectorSupport()
{
    static const VectorSupport support;
    return support;
}
#endif
} // namespace

const Kernels &portable()
{
    // One byte at a time, the clamped additions cost more than three look-ups.
    static const Kernels kernels { allOpaque, mapChannels, nullptr, mapPairs, saturate };
    return kernels;
}

const Kernels *avx2()
{
#if defined(ORVIX_VECTOR_KERNELS)
    return vectorSupport().avx2 ? &avx2Kernels() : nullptr;
#else
    return nullptr;
#endif
}

const Kernels *avx512()
{
#if defined(ORVIX_VECTOR_KERNELS)
    return vectorSupport().avx512 ? &avx512Kernels() : nullptr;
#else
    return nullptr;
#endif
}

const HslTables &hslTables()
{
    static const HslTables tables = converter().tables();
    return tables;
}

uint32_t hslToRgb(int hue, int saturation, int lightness)
{
    return converter().rgbAt(hue, saturation << 8 | lightness);
}

void warmUp()
{
    hslTables();
}

} // namespace FrameFilterKernels
