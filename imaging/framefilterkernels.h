// The per-pixel loops behind the picture filters: a portable version and,
// where the processor has them, AVX2 and AVX-512 ones with the same output
// bit for bit. Plain types only, so that the vector files need no Qt header
// (see there).
#pragma once

#include <cstddef>
#include <cstdint>

namespace FrameFilterKernels {

// One lookup per channel, each entry already at its channel's bits; the red
// entries carry the opaque alpha, so a pixel is the three entries or'ed.
struct ChannelTables
{
    const std::uint32_t *red = nullptr;
    const std::uint32_t *green = nullptr;
    const std::uint32_t *blue = nullptr;
    // The three again as plain values, blue, green and red one after the
    // other, for the loops that look up bytes.
    const std::uint8_t *bytes = nullptr;
};

// Every kernel reads the colour of count 32-bit pixels as stored, ignores
// their alpha and writes opaque pixels. Optional tables (nullptr for none)
// run before and after the colour step.
struct Kernels
{
    bool (*allOpaque)(const std::uint32_t *pixels, std::size_t count);
    void (*mapChannels)(std::uint32_t *pixels, std::size_t count, const ChannelTables &tables);
    // The channel steps that only add to or take from each channel, clamped:
    // raise and lower hold the amounts at each channel's bits. nullptr where
    // the table look-ups are faster.
    void (*shiftChannels)(std::uint32_t *pixels, std::size_t count, std::uint32_t raise, std::uint32_t lower);
    // The colour step whose result depends only on the largest and smallest
    // channel: pairs[max << 8 | min].
    void (*mapPairs)(std::uint32_t *pixels, std::size_t count, const ChannelTables *before,
                     const std::uint32_t *pairs);
    // The HSL saturation step. target[max << 8 | min] holds the new
    // saturation << 8 | the lightness in its low 16 bits and, above them,
    // what topAndBottom holds for those two. A grey stays grey, so its new
    // saturation is 0.
    void (*saturate)(std::uint32_t *pixels, std::size_t count, const ChannelTables *before,
                     const std::uint32_t *target, const ChannelTables *after);
};

// The layout and scale of each hue, in a form sixteen lanes look up from
// registers. A hue's code is its sector of 60 degrees, plus 8 for a sector's
// first hue, where QColor's comparisons fall the other way: (hue * 1093) >> 16,
// plus 8 where the low 16 bits of that product are below 1093. The mixed
// channel's product of range and factor is multiplied by scale: 6 for a
// falling channel, as QColor does.
struct HueCodes
{
    std::uint32_t layouts[16];
    float scales[16];
};

// What the vector loops read to turn HSL into RGB as QColor does. Every hue
// puts one channel at the top, one at the bottom and mixes the third; only
// the mixed one is computed per pixel.
struct HslTables
{
    // Per hue, a byte shuffle: byte k of the pixel (blue, green, red) is byte
    // (layout >> 8k) & 3 of mixed | top << 16 | bottom << 24, the saturation
    // target's entry with the mixed channel in its low byte. The last byte
    // has bit 7 set, so that a byte shuffle gives a 0 there for the alpha to
    // be or'ed in. Its bit 4, which a byte shuffle does not read, is set
    // when the mixed channel falls (QColor's third case).
    const std::uint32_t *layouts = nullptr;
    // Per hue: the mixed channel's factor.
    const float *factors = nullptr;
    // Per saturation << 8 | lightness: the top value, and the bottom value << 8.
    const std::uint16_t *topAndBottom = nullptr;
    const HueCodes *codes = nullptr;
};

const HslTables &hslTables();

const Kernels &portable();
// nullptr when the build or the processor has no AVX2 and FMA.
const Kernels *avx2();
// nullptr without AVX-512 and its byte permutes (F, BW and VBMI).
const Kernels *avx512();

// QColor::fromHsl(hue, s, l).rgb() for a hue of 0 to 359 and s and l above 0,
// the portable way; the saturation step is built on it.
std::uint32_t hslToRgb(int hue, int saturation, int lightness);
void warmUp();

} // namespace FrameFilterKernels
