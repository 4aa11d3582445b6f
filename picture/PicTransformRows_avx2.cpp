// The inner loops of the view for processors with AVX2. Four pixels at a time, or eight of one
// sample; what is left over at the end is done by a last step that overlaps the one before it.
//
// A pixel's three samples take three of the four 32-bit places of half a vector. Samples and
// weights meet in 16-bit pairs, which the processor multiplies and adds in one step.

#include "picture/PicTransformRows.h"

#include <immintrin.h>

namespace
{
constexpr char kNone = -1; // a byte of zero

// Four pixels, each a quarter of the vectors' 32-bit places: first and third in a, second and
// fourth in b.
inline void StoreFour(uint8_t* out, __m256i a, __m256i b)
{
    const __m256i words = _mm256_packs_epi32(a, b);
    const __m256i bytes = _mm256_packus_epi16(words, words);
    const __m256i close = _mm256_setr_epi8(
        0, 1, 2, 4, 5, 6, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, //
        kNone, kNone, kNone, kNone, kNone, kNone, 0, 1, 2, 4, 5, 6, kNone, kNone, kNone, kNone);
    const __m256i placed = _mm256_shuffle_epi8(bytes, close);
    const __m128i all =
        _mm_or_si128(_mm256_castsi256_si128(placed), _mm256_extracti128_si256(placed, 1));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out), all);
    const int last = _mm_extract_epi32(all, 2);
    __builtin_memcpy(out + 8, &last, 4);
}

inline __m256i EightBytesOfTwo(const uint8_t* a, const uint8_t* b)
{
    const __m128i low = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(a));
    const __m128i high = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(b));
    return _mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1);
}

inline __m256i SixteenBytesOfTwo(const uint8_t* a, const uint8_t* b)
{
    const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a));
    const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(b));
    return _mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1);
}

// Two pixels, one in each half.
inline __m256i BilinearTwo(const uint8_t* upper, const uint8_t* lower, const BilinearTap& a,
                           const BilinearTap& b, __m256i rowWeight)
{
    const __m256i neighbours = _mm256_setr_epi8(
        0, kNone, 3, kNone, 1, kNone, 4, kNone, 2, kNone, 5, kNone, kNone, kNone, kNone, kNone, //
        0, kNone, 3, kNone, 1, kNone, 4, kNone, 2, kNone, 5, kNone, kNone, kNone, kNone, kNone);
    const __m256i weights = _mm256_inserti128_si256(
        _mm256_castsi128_si256(_mm_set1_epi32(int(a.weights))), _mm_set1_epi32(int(b.weights)), 1);
    const int atA = 3 * a.low, atB = 3 * b.low;
    const __m256i above = _mm256_madd_epi16(
        _mm256_shuffle_epi8(EightBytesOfTwo(upper + atA, upper + atB), neighbours), weights);
    const __m256i below = _mm256_madd_epi16(
        _mm256_shuffle_epi8(EightBytesOfTwo(lower + atA, lower + atB), neighbours), weights);
    // above * (one - weight) + below * weight
    const __m256i sum =
        _mm256_add_epi32(_mm256_slli_epi32(above, kBilinearBits),
                         _mm256_mullo_epi32(_mm256_sub_epi32(below, above), rowWeight));
    const __m256i round = _mm256_set1_epi32(1 << (2 * kBilinearBits - 1));
    return _mm256_srli_epi32(_mm256_add_epi32(sum, round), 2 * kBilinearBits);
}

void Bilinear(uint8_t* out, const uint8_t* upper, const uint8_t* lower, const BilinearTap* columns,
              int count, uint32_t rowWeights)
{
    const __m256i rowWeight = _mm256_set1_epi32(int(rowWeights >> 16));
    for (int next = 0; next < count; next += 4)
    {
        const int x = next + 4 <= count ? next : count - 4;
        const BilinearTap* tap = columns + x;
        StoreFour(out + 3 * x, BilinearTwo(upper, lower, tap[0], tap[2], rowWeight),
                  BilinearTwo(upper, lower, tap[1], tap[3], rowWeight));
    }
}

// The two samples of each tap are the first of four bytes that are read.
inline __m256i BilinearAlong(const uint8_t* row, __m256i low, __m256i weights)
{
    const __m256i pair = _mm256_setr_epi8(
        0, kNone, 1, kNone, 4, kNone, 5, kNone, 8, kNone, 9, kNone, 12, kNone, 13, kNone, //
        0, kNone, 1, kNone, 4, kNone, 5, kNone, 8, kNone, 9, kNone, 12, kNone, 13, kNone);
    const __m256i bytes = _mm256_i32gather_epi32(reinterpret_cast<const int*>(row), low, 1);
    return _mm256_madd_epi16(_mm256_shuffle_epi8(bytes, pair), weights);
}

void BilinearGrey(uint8_t* out, const uint8_t* upper, const uint8_t* lower,
                  const BilinearTap* columns, int count, uint32_t rowWeights)
{
    static_assert(sizeof(BilinearTap) == 3 * sizeof(int), "taps are gathered");
    const __m256i everyTap = _mm256_setr_epi32(0, 3, 6, 9, 12, 15, 18, 21);
    const __m256i rowWeight = _mm256_set1_epi32(int(rowWeights >> 16));
    const __m256i round = _mm256_set1_epi32(1 << (2 * kBilinearBits - 1));
    for (int next = 0; next < count; next += 8)
    {
        const int x = next + 8 <= count ? next : count - 8;
        const int* taps = &columns[x].low;
        const __m256i low = _mm256_i32gather_epi32(taps, everyTap, 4);
        const __m256i weights = _mm256_i32gather_epi32(taps + 2, everyTap, 4);
        const __m256i above = BilinearAlong(upper, low, weights);
        const __m256i below = BilinearAlong(lower, low, weights);
        const __m256i sum =
            _mm256_add_epi32(_mm256_slli_epi32(above, kBilinearBits),
                             _mm256_mullo_epi32(_mm256_sub_epi32(below, above), rowWeight));
        const __m256i grey = _mm256_srli_epi32(_mm256_add_epi32(sum, round), 2 * kBilinearBits);
        const __m256i words = _mm256_packs_epi32(grey, grey);
        const __m256i bytes = _mm256_packus_epi16(words, words);
        const int halves[2] = {_mm256_extract_epi32(bytes, 0), _mm256_extract_epi32(bytes, 4)};
        __builtin_memcpy(out + x, halves, 8);
    }
}

// Sixteen samples. A number v below 65026 divided by 255 is (t + t / 256) / 256 with t = v + 1.
inline void BlendSixteen(uint8_t* over, const uint8_t* under, __m128i alpha)
{
    const __m256i a = _mm256_cvtepu8_epi16(alpha);
    const __m256i s = _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(over)));
    const __m256i u =
        _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(under)));
    const __m256i rest = _mm256_sub_epi16(_mm256_set1_epi16(255), a);
    const __m256i t =
        _mm256_add_epi16(_mm256_add_epi16(_mm256_mullo_epi16(a, s), _mm256_mullo_epi16(rest, u)),
                         _mm256_set1_epi16(1));
    const __m256i blended = _mm256_srli_epi16(_mm256_add_epi16(t, _mm256_srli_epi16(t, 8)), 8);
    const __m256i bytes = _mm256_permute4x64_epi64(_mm256_packus_epi16(blended, blended), 0x08);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(over), _mm256_castsi256_si128(bytes));
}

void Blend(uint8_t* over, const uint8_t* under, const uint8_t* alpha, int count)
{
    const __m128i first = _mm_setr_epi8(0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5);
    const __m128i second = _mm_setr_epi8(5, 5, 6, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 10, 10);
    const __m128i third =
        _mm_setr_epi8(10, 11, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14, 15, 15, 15);
    int x = 0;
    for (; x + 16 <= count; x += 16, over += 48, under += 48)
    {
        const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(alpha + x));
        BlendSixteen(over, under, _mm_shuffle_epi8(a, first));
        BlendSixteen(over + 16, under + 16, _mm_shuffle_epi8(a, second));
        BlendSixteen(over + 32, under + 32, _mm_shuffle_epi8(a, third));
    }
    for (; x < count; ++x, over += 3, under += 3)
        for (int c = 0; c < 3; ++c)
            over[c] = uint8_t(((255u - alpha[x]) * under[c] + unsigned(over[c]) * alpha[x]) / 255);
}

// Two rows of one pixel, one in each half.
inline __m256i BicubicAlong(const uint8_t* first, const uint8_t* second, const BicubicTap& tap)
{
    const __m256i lowPair = _mm256_setr_epi8(
        0, kNone, 3, kNone, 1, kNone, 4, kNone, 2, kNone, 5, kNone, kNone, kNone, kNone, kNone, //
        0, kNone, 3, kNone, 1, kNone, 4, kNone, 2, kNone, 5, kNone, kNone, kNone, kNone, kNone);
    const __m256i highPair = _mm256_setr_epi8(
        6, kNone, 9, kNone, 7, kNone, 10, kNone, 8, kNone, 11, kNone, kNone, kNone, kNone, kNone, 6,
        kNone, 9, kNone, 7, kNone, 10, kNone, 8, kNone, 11, kNone, kNone, kNone, kNone, kNone);
    int weights[2];
    __builtin_memcpy(weights, tap.weight, sizeof weights);
    const __m256i samples = SixteenBytesOfTwo(first + 3 * tap.first, second + 3 * tap.first);
    const __m256i sum = _mm256_add_epi32(
        _mm256_madd_epi16(_mm256_shuffle_epi8(samples, lowPair), _mm256_set1_epi32(weights[0])),
        _mm256_madd_epi16(_mm256_shuffle_epi8(samples, highPair), _mm256_set1_epi32(weights[1])));
    const __m256i round = _mm256_set1_epi32(1 << (kBicubicRowShift - 1));
    return _mm256_srai_epi32(_mm256_add_epi32(sum, round), kBicubicRowShift);
}

// Both halves hold partial sums of one pixel.
inline __m256i BicubicOne(const uint8_t* const rows[4], const BicubicTap& tap, __m256i rowWeights)
{
    const __m256i upper = BicubicAlong(rows[0], rows[1], tap);
    const __m256i lower = BicubicAlong(rows[2], rows[3], tap);
    // Rows 0 and 2 become the pairs of one half, rows 1 and 3 those of the other.
    const __m256i pairs = _mm256_blend_epi16(upper, _mm256_slli_epi32(lower, 16), 0xAA);
    return _mm256_madd_epi16(pairs, rowWeights);
}

inline __m256i BicubicTwo(const uint8_t* const rows[4], const BicubicTap& a, const BicubicTap& b,
                          __m256i rowWeights)
{
    const __m256i sumsA = BicubicOne(rows, a, rowWeights);
    const __m256i sumsB = BicubicOne(rows, b, rowWeights);
    const __m256i sum = _mm256_add_epi32(_mm256_permute2x128_si256(sumsA, sumsB, 0x20),
                                         _mm256_permute2x128_si256(sumsA, sumsB, 0x31));
    const __m256i round = _mm256_set1_epi32(1 << (kBicubicShift - 1));
    return _mm256_srai_epi32(_mm256_add_epi32(sum, round), kBicubicShift);
}

inline int Pair(int16_t low, int16_t high)
{
    return int(uint16_t(low) | uint32_t(uint16_t(high)) << 16);
}

void Bicubic(uint8_t* out, const uint8_t* const rows[4], const BicubicTap* columns, int count,
             const int16_t rowWeight[4])
{
    const __m256i rowWeights = _mm256_inserti128_si256(
        _mm256_castsi128_si256(_mm_set1_epi32(Pair(rowWeight[0], rowWeight[2]))),
        _mm_set1_epi32(Pair(rowWeight[1], rowWeight[3])), 1);
    for (int next = 0; next < count; next += 4)
    {
        const int x = next + 4 <= count ? next : count - 4;
        const BicubicTap* tap = columns + x;
        StoreFour(out + 3 * x, BicubicTwo(rows, tap[0], tap[2], rowWeights),
                  BicubicTwo(rows, tap[1], tap[3], rowWeights));
    }
}
} // namespace

// The reach covers the 8, 16 and 4 bytes that are read from a tap's first sample on.
extern const TransformRows kTransformRowsAvx2;
const TransformRows kTransformRowsAvx2 = {3, 6, 4, Bilinear, Bicubic, BilinearGrey, Blend};
