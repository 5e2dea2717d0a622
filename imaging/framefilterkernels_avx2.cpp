// The filter loops eight pixels at a time with AVX2 and FMA.
//
// This file alone is compiled for AVX2 and runs only after the processor has
// been checked. It therefore includes no header with shared inline functions
// (Qt, the standard library's algorithms): the linker may keep any one copy
// of such a function, and this file's copy would crash an older processor.
// Nothing here may run at start-up either, so there are no global constants.
//
// The saturation step repeats QColor's single-precision steps lane by lane.
// IEEE arithmetic gives the same bits eight at a time as one at a time, as
// long as nothing is fused into a multiply-add; the build forbids that. The
// multiply-adds written out here say why they are exact.
#include "framefilterkernels.h"

#include <immintrin.h>

namespace FrameFilterKernels {

const Kernels &avx2Kernels();

namespace {
using std::size_t;
using std::uint16_t;
using std::uint32_t;

inline __m256i load(const uint32_t *pixels)
{
    return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(pixels));
}

inline void store(uint32_t *pixels, __m256i value)
{
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(pixels), value);
}

inline __m256i lookUp(const uint32_t *table, __m256i index)
{
    return _mm256_i32gather_epi32(reinterpret_cast<const int *>(table), index, 4);
}

inline __m256i mapped(__m256i pixels, const ChannelTables &tables)
{
    const __m256i byte = _mm256_set1_epi32(0xff);
    const __m256i red = lookUp(tables.red, _mm256_and_si256(_mm256_srli_epi32(pixels, 16), byte));
    const __m256i green = lookUp(tables.green, _mm256_and_si256(_mm256_srli_epi32(pixels, 8), byte));
    const __m256i blue = lookUp(tables.blue, _mm256_and_si256(pixels, byte));
    return _mm256_or_si256(_mm256_or_si256(red, green), blue);
}

// max << 8 | min of each pixel's three channels.
inline __m256i pairIndices(__m256i pixels)
{
    const __m256i byte = _mm256_set1_epi32(0xff);
    const __m256i green = _mm256_srli_epi32(pixels, 8);
    const __m256i red = _mm256_srli_epi32(pixels, 16);
    const __m256i maximum = _mm256_and_si256(_mm256_max_epu8(_mm256_max_epu8(pixels, green), red), byte);
    const __m256i minimum = _mm256_and_si256(_mm256_min_epu8(_mm256_min_epu8(pixels, green), red), byte);
    return _mm256_or_si256(_mm256_slli_epi32(maximum, 8), minimum);
}

// A channel as QColor holds it: float(i * 0x101) / 65535, which is i / 255
// rounded. The product with the reciprocal is off by an ulp for a few
// channels; with the reciprocal split in two parts, one multiply-add rounds
// every channel right.
inline __m256 channelFloat(__m256i channel)
{
    const __m256 wide = _mm256_cvtepi32_ps(channel);
    return _mm256_fmadd_ps(wide, _mm256_set1_ps(0x1.010102p-8f), _mm256_mul_ps(wide, _mm256_set1_ps(-0x1.fdfdfep-33f)));
}

inline __m256 select(__m256 mask, __m256 ifTrue, __m256 ifFalse)
{
    return _mm256_blendv_ps(ifFalse, ifTrue, mask);
}

inline __m256 less(__m256 a, __m256 b)
{
    return _mm256_cmp_ps(a, b, _CMP_LT_OQ);
}

// The portable loops' rounding to 8 bits, which gives QColor's. Fused, it
// gives the same for every value the mixed channels can take.
inline __m256i roundedToEightBits(__m256 value)
{
    return _mm256_cvttps_epi32(_mm256_fmadd_ps(value, _mm256_set1_ps(255.0f), _mm256_set1_ps(0.5f - 0x1p-25f)));
}

// The HSL hue in whole degrees as QColor computes it in single precision.
// With n the difference of the other two channels, QColor's rounding of
// hue * 100 makes it the sector's start plus the whole part of
// 60n / delta + 0.005; 64 more keeps that part positive for the truncation.
// With the quotient rounded once, as a division rounds it, this is exact
// for every n and delta of 8-bit channels (the tests go through every
// colour). Grey pixels get hue 0.
inline __m256i hueDegrees(__m256i red, __m256i green, __m256i blue, __m256i maximum, __m256i minimum)
{
    const __m256i redLargest = _mm256_cmpeq_epi32(red, maximum);
    const __m256i greenLargest = _mm256_andnot_si256(redLargest, _mm256_cmpeq_epi32(green, maximum));
    const __m256i n = _mm256_blendv_epi8(_mm256_blendv_epi8(_mm256_sub_epi32(red, green), _mm256_sub_epi32(blue, red), greenLargest),
                                         _mm256_sub_epi32(green, blue), redLargest);
    const __m256i sector = _mm256_blendv_epi8(_mm256_blendv_epi8(_mm256_set1_epi32(240 - 64), _mm256_set1_epi32(120 - 64), greenLargest),
                                              _mm256_set1_epi32(-64), redLargest);
    // 60n is exact in float.
    const __m256 quotient = _mm256_div_ps(_mm256_mul_ps(_mm256_cvtepi32_ps(n), _mm256_set1_ps(60.0f)),
                                          _mm256_cvtepi32_ps(_mm256_sub_epi32(maximum, minimum)));
    __m256i hue = _mm256_add_epi32(sector, _mm256_cvttps_epi32(_mm256_add_ps(quotient, _mm256_set1_ps(64.005f))));
    hue = _mm256_add_epi32(hue, _mm256_and_si256(_mm256_cmpgt_epi32(_mm256_setzero_si256(), hue), _mm256_set1_epi32(360)));
    // Grey lanes divided 0 by 0; hue 0 keeps their table reads in bounds.
    // Every other lane is within 0 to 359: the tests try every colour.
    return _mm256_andnot_si256(_mm256_cmpeq_epi32(maximum, minimum), hue);
}

// QColor's temp1 and temp2 for a saturation and lightness.
struct Bounds
{
    __m256 low;
    __m256 high;
};

inline Bounds boundsOf(__m256i saturation, __m256i lightness)
{
    const __m256 s = channelFloat(saturation);
    const __m256 l = channelFloat(lightness);
    const __m256 high = select(less(l, _mm256_set1_ps(0.5f)), _mm256_mul_ps(l, _mm256_add_ps(_mm256_set1_ps(1.0f), s)),
                               _mm256_sub_ps(_mm256_add_ps(l, s), _mm256_mul_ps(l, s)));
    // 2l is exact, so fused or not the difference is rounded once.
    return { _mm256_fmsub_ps(_mm256_set1_ps(2.0f), l, high), high };
}

// A hue has one channel at the top, one at the bottom and one mixed: the
// first two come with the saturation target, only the third is computed,
// and the layout's byte shuffle puts the three in their places.
inline __m256i hueRgb(__m256i layout, __m256i hue, __m256i entry, Bounds bounds, const HslTables &tables)
{
    const __m256 factor = _mm256_i32gather_ps(tables.factors, hue, 4);
    const __m256 falling = _mm256_castsi256_ps(_mm256_cmpeq_epi32(_mm256_and_si256(layout, _mm256_set1_epi32(0x10 << 24)),
                                                                  _mm256_set1_epi32(0x10 << 24)));
    const __m256 scale = select(falling, _mm256_set1_ps(6.0f), _mm256_set1_ps(1.0f));
    const __m256 range = _mm256_sub_ps(bounds.high, bounds.low);
    const __m256i mixed = roundedToEightBits(_mm256_add_ps(bounds.low, _mm256_mul_ps(_mm256_mul_ps(range, factor), scale)));
    const __m256i source = _mm256_or_si256(_mm256_and_si256(entry, _mm256_set1_epi32(int(0xffff0000u))), mixed);
    // The shuffle works within 16 bytes: each pixel's picks move to its own four.
    const __m256i order = _mm256_add_epi32(layout, _mm256_setr_epi32(0, 0x04040404, 0x08080808, 0x0c0c0c0c, 0, 0x04040404,
                                                                     0x08080808, 0x0c0c0c0c));
    return _mm256_or_si256(_mm256_shuffle_epi8(source, order), _mm256_set1_epi32(int(0xff000000u)));
}

bool allOpaque(const uint32_t *pixels, size_t count)
{
    __m256i all = _mm256_set1_epi32(-1);
    size_t i = 0;
    for (; i + 8 <= count; i += 8)
        all = _mm256_and_si256(all, load(pixels + i));
    const __m256i alpha = _mm256_set1_epi32(int(0xff000000u));
    return _mm256_testc_si256(all, alpha) && portable().allOpaque(pixels + i, count - i);
}

void mapChannels(uint32_t *pixels, size_t count, const ChannelTables &tables)
{
    size_t i = 0;
    for (; i + 8 <= count; i += 8)
        store(pixels + i, mapped(load(pixels + i), tables));
    if (i < count)
        portable().mapChannels(pixels + i, count - i, tables);
}

// Saturating byte arithmetic is the clamp itself, 32 channels at a time.
void shiftChannels(uint32_t *pixels, size_t count, uint32_t raise, uint32_t lower)
{
    const __m256i up = _mm256_set1_epi32(int(raise));
    const __m256i down = _mm256_set1_epi32(int(lower));
    const __m256i opaque = _mm256_set1_epi32(int(0xff000000u));
    const auto shifted = [&](__m256i value) { return _mm256_or_si256(_mm256_subs_epu8(_mm256_adds_epu8(value, up), down), opaque); };
    size_t i = 0;
    for (; i + 8 <= count; i += 8)
        store(pixels + i, shifted(load(pixels + i)));
    if (i < count) {
        // The last few pixels of a line through a mask, so nothing past it is touched.
        const __m256i mask = _mm256_cmpgt_epi32(_mm256_set1_epi32(int(count - i)), _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
        int *last = reinterpret_cast<int *>(pixels + i);
        _mm256_maskstore_epi32(last, mask, shifted(_mm256_maskload_epi32(last, mask)));
    }
}

void mapPairs(uint32_t *pixels, size_t count, const ChannelTables *before, const uint32_t *pairs)
{
    size_t i = 0;
    for (; i + 8 <= count; i += 8) {
        __m256i value = load(pixels + i);
        if (before)
            value = mapped(value, *before);
        store(pixels + i, lookUp(pairs, pairIndices(value)));
    }
    if (i < count)
        portable().mapPairs(pixels + i, count - i, before, pairs);
}

void saturate(uint32_t *pixels, size_t count, const ChannelTables *before, const uint32_t *target,
              const ChannelTables *after)
{
    const __m256i byte = _mm256_set1_epi32(0xff);
    const HslTables &tables = hslTables();
    // Two short loops over a piece of the line rather than one long one: each
    // group of eight is a long chain of dependent steps, and short chains let
    // the processor work on several groups at once.
    constexpr size_t piece = 64;
    alignas(32) uint32_t hues[piece], entries[piece];
    size_t i = 0;
    for (; i + 8 <= count; i += piece) {
        const size_t groups = (count - i < piece ? count - i : piece) / 8;
        for (size_t k = 0; k < groups; ++k) {
            __m256i value = load(pixels + i + 8 * k);
            if (before)
                value = mapped(value, *before);
            const __m256i red = _mm256_and_si256(_mm256_srli_epi32(value, 16), byte);
            const __m256i green = _mm256_and_si256(_mm256_srli_epi32(value, 8), byte);
            const __m256i blue = _mm256_and_si256(value, byte);
            const __m256i maximum = _mm256_max_epi32(_mm256_max_epi32(red, green), blue);
            const __m256i minimum = _mm256_min_epi32(_mm256_min_epi32(red, green), blue);
            const __m256i pair = _mm256_or_si256(_mm256_slli_epi32(maximum, 8), minimum);
            store(entries + 8 * k, lookUp(target, pair));
            store(hues + 8 * k, hueDegrees(red, green, blue, maximum, minimum));
        }
        // A grey, with its saturation at 0, comes out as its lightness in all
        // three channels whatever the hue, as does a colour whose saturation
        // drops to 0, and black.
        for (size_t k = 0; k < groups; ++k) {
            const __m256i entry = load(entries + 8 * k);
            const __m256i hue = load(hues + 8 * k);
            const __m256i layout = _mm256_i32gather_epi32(reinterpret_cast<const int *>(tables.layouts), hue, 4);
            const Bounds bounds = boundsOf(_mm256_and_si256(_mm256_srli_epi32(entry, 8), byte), _mm256_and_si256(entry, byte));
            const __m256i result = hueRgb(layout, hue, entry, bounds, tables);
            store(pixels + i + 8 * k, after ? mapped(result, *after) : result);
        }
        if (groups < piece / 8) {
            i += 8 * groups;
            break;
        }
    }
    if (i < count)
        portable().saturate(pixels + i, count - i, before, target, after);
}
} // namespace

const Kernels &avx2Kernels()
{
    // Constant-initialised: no code of this file runs before the check.
    static constexpr Kernels kernels { allOpaque, mapChannels, shiftChannels, mapPairs, saturate };
    return kernels;
}

} // namespace FrameFilterKernels
