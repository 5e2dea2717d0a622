// The filter loops sixteen pixels at a time with AVX-512. Its byte permutes
// look each channel's 256 values up in registers, where AVX2 gathers them
// from memory, and masked loads and stores take a line's last few pixels.
//
// As with the AVX2 file, this one alone is compiled for these instructions
// and runs only after the processor has been checked: it includes no header
// with shared inline functions and has no global constants. QColor's
// single-precision steps are repeated lane by lane as there, and the build
// forbids fusing them into multiply-adds here too; the multiply-adds written
// out say why they are exact.
#include "framefilterkernels.h"

#include <immintrin.h>

namespace FrameFilterKernels {

const Kernels &avx512Kernels();

namespace {
using std::size_t;
using std::uint32_t;
using std::uint8_t;

// The lanes of a group of sixteen that hold pixels.
inline __mmask16 lanesFor(size_t left)
{
    return left >= 16 ? __mmask16(0xffff) : __mmask16((1u << left) - 1);
}

inline __m512i load(const uint32_t *pixels, __mmask16 lanes)
{
    return _mm512_maskz_loadu_epi32(lanes, pixels);
}

inline void store(uint32_t *pixels, __mmask16 lanes, __m512i value)
{
    _mm512_mask_storeu_epi32(pixels, lanes, value);
}

inline __m512i opaque()
{
    return _mm512_set1_epi32(int(0xff000000u));
}

// For a byte shuffle: the offset of each pixel's own four bytes in its 16.
inline __m512i ownBytes()
{
    return _mm512_set4_epi32(0x0c0c0c0c, 0x08080808, 0x04040404, 0);
}

// 256 byte values in four registers.
struct ByteTable
{
    __m512i quarter[4];
};

inline ByteTable byteTable(const uint8_t *bytes)
{
    return { { _mm512_loadu_si512(bytes), _mm512_loadu_si512(bytes + 64), _mm512_loadu_si512(bytes + 128),
               _mm512_loadu_si512(bytes + 192) } };
}

// Every byte of index looked up; high marks those of 128 and above.
inline __m512i lookUp(const ByteTable &table, __m512i index, __mmask64 high)
{
    const __m512i low = _mm512_permutex2var_epi8(table.quarter[0], index, table.quarter[1]);
    const __m512i upper = _mm512_permutex2var_epi8(table.quarter[2], index, table.quarter[3]);
    return _mm512_mask_blend_epi8(high, low, upper);
}

struct ChannelBytes
{
    ByteTable blue, green, red;
};

inline ChannelBytes channelBytes(const ChannelTables *tables)
{
    if (!tables)
        return ChannelBytes();
    return { byteTable(tables->bytes), byteTable(tables->bytes + 256), byteTable(tables->bytes + 512) };
}

inline __m512i mapped(__m512i pixels, const ChannelBytes &tables)
{
    const __mmask64 high = _mm512_movepi8_mask(pixels);
    // Every byte goes through all three tables; each keeps its own channel's.
    __m512i result = lookUp(tables.blue, pixels, high);
    result = _mm512_mask_blend_epi8(0x2222222222222222ull, result, lookUp(tables.green, pixels, high));
    result = _mm512_mask_blend_epi8(0x4444444444444444ull, result, lookUp(tables.red, pixels, high));
    return _mm512_or_si512(result, opaque());
}

// A channel as QColor holds it: float(i * 0x101) / 65535, which is i / 255
// rounded. The divider is slow at this width and the product with the
// reciprocal is off by an ulp for a few channels; with the reciprocal split
// in two parts, one multiply-add rounds every channel right.
inline __m512 channelFloat(__m512i channel)
{
    const __m512 wide = _mm512_cvtepi32_ps(channel);
    return _mm512_fmadd_ps(wide, _mm512_set1_ps(0x1.010102p-8f), _mm512_mul_ps(wide, _mm512_set1_ps(-0x1.fdfdfep-33f)));
}

// The portable loops' rounding to 8 bits, which gives QColor's. Fused, it
// gives the same for every value the mixed channels can take.
inline __m512i roundedToEightBits(__m512 value)
{
    return _mm512_cvttps_epi32(_mm512_fmadd_ps(value, _mm512_set1_ps(255.0f), _mm512_set1_ps(0.5f - 0x1p-25f)));
}

// For a byte permute of two registers of 16 pixels each: word p takes
// channel c of pixel p (blue 0, green 1, red 2).
inline __m512i channelWords(int c)
{
    alignas(64) uint16_t index[32];
    for (int p = 0; p < 32; ++p)
        index[p] = uint16_t(4 * p + c);
    return _mm512_load_si512(index);
}

// For a byte permute of the smallest and largest channels' words: the
// table index max << 8 | min of pixels 16 * half to 16 * half + 15.
inline __m512i pairBytes(int half)
{
    alignas(64) uint32_t index[16];
    for (int p = 0; p < 16; ++p) {
        const uint32_t word = uint32_t(2 * (p + 16 * half));
        index[p] = word | (64 + word) << 8;
    }
    return _mm512_load_si512(index);
}

// The whole part of 60n / delta + 64.005 for sixteen lanes, of which the HSL
// hue is made. With the quotient rounded once, as a division rounds it, this
// is exact for every n and delta of 8-bit channels (the tests go through
// every colour). Lanes with a delta of 0 come out as nonsense.
inline __m512i wholeDegrees(__m512i sixtyTimesN, __m512i delta)
{
    const __m512 quotient = _mm512_div_ps(_mm512_cvtepi32_ps(sixtyTimesN), _mm512_cvtepi32_ps(delta));
    return _mm512_cvttps_epi32(_mm512_add_ps(quotient, _mm512_set1_ps(64.005f)));
}

// The HSL hues, in whole degrees as QColor computes them in single
// precision, of 32 pixels given as words. With n the difference of the
// other two channels, QColor's rounding of hue * 100 makes a hue its
// sector's start plus the whole part of 60n / delta + 0.005; 64 more keeps
// that part positive for the truncation. Only the divisions take 32-bit
// lanes. A grey's hue is 359, which does not matter: with its saturation at
// 0 it comes out as its lightness in all three channels whatever the hue,
// as does a colour whose saturation drops to 0, and black.
inline __m512i hueWords(__m512i red, __m512i green, __m512i blue, __m512i maximum, __m512i minimum)
{
    const __mmask32 redLargest = _mm512_cmpeq_epi16_mask(red, maximum);
    const __mmask32 greenLargest = _mm512_mask_cmpeq_epi16_mask(__mmask32(~redLargest), green, maximum);
    const __m512i n = _mm512_mask_blend_epi16(
            redLargest, _mm512_mask_blend_epi16(greenLargest, _mm512_sub_epi16(red, green), _mm512_sub_epi16(blue, red)),
            _mm512_sub_epi16(green, blue));
    const __m512i sector = _mm512_mask_blend_epi16(
            redLargest, _mm512_mask_blend_epi16(greenLargest, _mm512_set1_epi16(240 - 64), _mm512_set1_epi16(120 - 64)),
            _mm512_set1_epi16(-64));
    const __m512i delta = _mm512_sub_epi16(maximum, minimum);
    const __m512i sixtyTimesN = _mm512_mullo_epi16(n, _mm512_set1_epi16(60));
    const __m512i sign = _mm512_srai_epi16(sixtyTimesN, 15);
    const __m512i zero = _mm512_setzero_si512();
    // Unpacking to 32 bits and packing back keeps the pixels' order.
    const __m512i whole = _mm512_packs_epi32(
            wholeDegrees(_mm512_unpacklo_epi16(sixtyTimesN, sign), _mm512_unpacklo_epi16(delta, zero)),
            wholeDegrees(_mm512_unpackhi_epi16(sixtyTimesN, sign), _mm512_unpackhi_epi16(delta, zero)));
    const __m512i hue = _mm512_add_epi16(sector, whole);
    // A hue below 0 is above 359 as unsigned, and 360 more is its place; a
    // grey's nonsense is brought down to 359.
    return _mm512_min_epu16(_mm512_min_epu16(hue, _mm512_add_epi16(hue, _mm512_set1_epi16(360))),
                            _mm512_set1_epi16(359));
}

// HueCodes in registers.
struct CodeTables
{
    __m512i layouts;
    __m512 scales;
};

inline CodeTables codeTables(const HueCodes &codes)
{
    return { _mm512_loadu_si512(codes.layouts), _mm512_loadu_ps(codes.scales) };
}

bool allOpaque(const uint32_t *pixels, size_t count)
{
    const __m512i ones = _mm512_set1_epi32(-1);
    __m512i all = ones;
    for (size_t i = 0; i < count; i += 16)
        all = _mm512_and_si512(all, _mm512_mask_loadu_epi32(ones, lanesFor(count - i), pixels + i));
    return _mm512_cmpeq_epi32_mask(_mm512_and_si512(all, opaque()), opaque()) == 0xffff;
}

void mapChannels(uint32_t *pixels, size_t count, const ChannelTables &tables)
{
    const ChannelBytes bytes = channelBytes(&tables);
    for (size_t i = 0; i < count; i += 16) {
        const __mmask16 lanes = lanesFor(count - i);
        store(pixels + i, lanes, mapped(load(pixels + i, lanes), bytes));
    }
}

// Saturating byte arithmetic is the clamp itself.
void shiftChannels(uint32_t *pixels, size_t count, uint32_t raise, uint32_t lower)
{
    const __m512i up = _mm512_set1_epi32(int(raise));
    const __m512i down = _mm512_set1_epi32(int(lower));
    for (size_t i = 0; i < count; i += 16) {
        const __mmask16 lanes = lanesFor(count - i);
        const __m512i shifted = _mm512_subs_epu8(_mm512_adds_epu8(load(pixels + i, lanes), up), down);
        store(pixels + i, lanes, _mm512_or_si512(shifted, opaque()));
    }
}

void mapPairs(uint32_t *pixels, size_t count, const ChannelTables *before, const uint32_t *pairs)
{
    const ChannelBytes beforeBytes = channelBytes(before);
    const __m512i byte = _mm512_set1_epi32(0xff);
    for (size_t i = 0; i < count; i += 16) {
        const __mmask16 lanes = lanesFor(count - i);
        __m512i value = load(pixels + i, lanes);
        if (before)
            value = mapped(value, beforeBytes);
        const __m512i green = _mm512_srli_epi32(value, 8);
        const __m512i red = _mm512_srli_epi32(value, 16);
        const __m512i maximum = _mm512_and_si512(_mm512_max_epu8(_mm512_max_epu8(value, green), red), byte);
        const __m512i minimum = _mm512_and_si512(_mm512_min_epu8(_mm512_min_epu8(value, green), red), byte);
        const __m512i pair = _mm512_or_si512(_mm512_slli_epi32(maximum, 8), minimum);
        store(pixels + i, lanes, _mm512_i32gather_epi32(pair, pairs, 4));
    }
}

// The saturation step works on pieces this long, which stay in the
// first-level cache.
constexpr size_t piece = 512;

// The saturation step alone, on a piece of whole groups of 32; the channel
// steps around it are done apart. It runs as two loops, the hue and the new
// colour: in one, each group's long chain of dependent steps filled the
// scheduler and the groups no longer overlapped. Gathers are few: each costs
// about as much as a dozen steps in registers. The per-hue layout comes from
// registers; the factor, which took more than a dozen steps to work out, is
// gathered from its small table.
void saturateOnly(uint32_t *pixels, size_t count, const uint32_t *target, const CodeTables &codes,
                  const float *factors)
{
    alignas(64) uint32_t entries[piece];
    alignas(64) uint16_t hues[piece];
    // The first loop works on words, two registers of pixels at a time.
    const __mmask64 words = 0x5555555555555555ull;
    const __mmask64 pairs = 0x3333333333333333ull;
    const __m512i redWords = channelWords(2), greenWords = channelWords(1), blueWords = channelWords(0);
    const __m512i firstPairs = pairBytes(0), secondPairs = pairBytes(1);
    for (size_t i = 0; i < count; i += 32) {
        const __m512i first = _mm512_loadu_si512(pixels + i);
        const __m512i second = _mm512_loadu_si512(pixels + i + 16);
        const __m512i red = _mm512_maskz_permutex2var_epi8(words, first, redWords, second);
        const __m512i green = _mm512_maskz_permutex2var_epi8(words, first, greenWords, second);
        const __m512i blue = _mm512_maskz_permutex2var_epi8(words, first, blueWords, second);
        const __m512i maximum = _mm512_max_epu16(_mm512_max_epu16(red, green), blue);
        const __m512i minimum = _mm512_min_epu16(_mm512_min_epu16(red, green), blue);
        // The table is far bigger than the first-level cache, yet its gather
        // costs less than working its entries out.
        const __m512i firstPair = _mm512_maskz_permutex2var_epi8(pairs, minimum, firstPairs, maximum);
        const __m512i secondPair = _mm512_maskz_permutex2var_epi8(pairs, minimum, secondPairs, maximum);
        _mm512_store_si512(entries + i, _mm512_i32gather_epi32(firstPair, target, 4));
        _mm512_store_si512(entries + i + 16, _mm512_i32gather_epi32(secondPair, target, 4));
        _mm512_store_si512(hues + i, hueWords(red, green, blue, maximum, minimum));
    }
    const __m512i byte = _mm512_set1_epi32(0xff);
    const __m512i magic = _mm512_set1_epi32(1093);
    for (size_t i = 0; i < count; i += 16) {
        const __m512i entry = _mm512_load_si512(entries + i);
        const __m512i hue = _mm512_cvtepu16_epi32(_mm256_load_si256(reinterpret_cast<const __m256i *>(hues + i)));
        // The hue's code: the product's high and low halves of each 16 bits.
        const __mmask16 firstHue = _mm512_cmplt_epu32_mask(_mm512_mullo_epi16(hue, magic), magic);
        const __m512i sector = _mm512_mulhi_epu16(hue, magic);
        const __m512i code = _mm512_mask_add_epi32(sector, firstHue, sector, _mm512_set1_epi32(8));
        const __m512i layout = _mm512_permutexvar_epi32(code, codes.layouts);

        const __m512 s = channelFloat(_mm512_and_si512(_mm512_srli_epi32(entry, 8), byte));
        const __m512 l = channelFloat(_mm512_and_si512(entry, byte));
        const __m512 high = _mm512_mask_blend_ps(_mm512_cmp_ps_mask(l, _mm512_set1_ps(0.5f), _CMP_LT_OQ),
                                                 _mm512_sub_ps(_mm512_add_ps(l, s), _mm512_mul_ps(l, s)),
                                                 _mm512_mul_ps(l, _mm512_add_ps(_mm512_set1_ps(1.0f), s)));
        // 2l is exact, so fused or not the difference is rounded once.
        const __m512 low = _mm512_fmsub_ps(_mm512_set1_ps(2.0f), l, high);
        const __m512 range = _mm512_sub_ps(high, low);

        const __m512 factor = _mm512_i32gather_ps(hue, factors, 4);
        const __m512 product = _mm512_mul_ps(_mm512_mul_ps(range, factor), _mm512_permutexvar_ps(code, codes.scales));
        const __m512i mixed = roundedToEightBits(_mm512_add_ps(low, product));
        // mixed | top << 16 | bottom << 24: (entry & 0xffff0000) | mixed
        const __m512i source = _mm512_ternarylogic_epi32(entry, mixed, _mm512_set1_epi32(int(0xffff0000u)), 0xec);
        // The alpha bytes come from the opaque pixel the shuffle merges into.
        const __m512i order = _mm512_add_epi32(layout, ownBytes());
        _mm512_storeu_si512(pixels + i, _mm512_mask_shuffle_epi8(opaque(), 0x7777777777777777ull, source, order));
    }
}

void saturate(uint32_t *pixels, size_t count, const ChannelTables *before, const uint32_t *target,
              const ChannelTables *after)
{
    // The steps around it as loops of their own: in one loop, their byte
    // tables and the saturation step's values would not all fit in the
    // registers.
    const HslTables &tables = hslTables();
    const CodeTables codes = codeTables(*tables.codes);
    for (size_t i = 0; i < count; i += piece) {
        const size_t length = count - i < piece ? count - i : piece;
        if (before)
            mapChannels(pixels + i, length, *before);
        const size_t whole = length & ~size_t(31);
        saturateOnly(pixels + i, whole, target, codes, tables.factors);
        if (whole < length) {
            // The last few pixels go through a group of their own.
            uint32_t *rest = pixels + i + whole;
            const __mmask16 firstLanes = lanesFor(length - whole);
            const __mmask16 secondLanes = length - whole > 16 ? lanesFor(length - whole - 16) : 0;
            alignas(64) uint32_t group[32];
            _mm512_store_si512(group, load(rest, firstLanes));
            _mm512_store_si512(group + 16, load(rest + 16, secondLanes));
            saturateOnly(group, 32, target, codes, tables.factors);
            store(rest, firstLanes, _mm512_load_si512(group));
            store(rest + 16, secondLanes, _mm512_load_si512(group + 16));
        }
        if (after)
            mapChannels(pixels + i, length, *after);
    }
}
} // namespace

const Kernels &avx512Kernels()
{
    // Constant-initialised: no code of this file runs before the check.
    static constexpr Kernels kernels { allOpaque, mapChannels, shiftChannels, mapPairs, saturate };
    return kernels;
}

} // namespace FrameFilterKernels
