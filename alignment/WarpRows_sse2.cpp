// The inner loops of resampling for processors with SSE2: every processor that this system runs
// on. A pixel's four columns of three samples are twelve neighbours in memory. Two rows at a time
// meet in pairs of 16 bits, which the processor multiplies and adds in one step; what the four rows
// give becomes floats, four columns of which are weighed and added.

#include "alignment/WarpRows.h"

#include <emmintrin.h>

namespace
{
constexpr int kPhaseShift = kWarpPlaceBits - kWarpPhaseBits;
constexpr int64_t kPhaseMask = (1 << kWarpPhaseBits) - 1;

// Neighbouring samples of one row; a 16-bit one is taken from the middle of its range.
template <typename T, int kComponents>
struct Neighbours;

template <>
struct Neighbours<uint8_t, 3> // sixteen, of which twelve count
{
    __m128i all;
    explicit Neighbours(const uint8_t* from)
        : all(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from)))
    {
    }
};

template <>
struct Neighbours<uint8_t, 1>
{
    __m128i all;
    explicit Neighbours(const uint8_t* from)
    {
        int four;
        __builtin_memcpy(&four, from, 4);
        all = _mm_cvtsi32_si128(four);
    }
};

template <>
struct Neighbours<uint16_t, 3>
{
    __m128i first, last; // eight and four
    explicit Neighbours(const uint8_t* from)
    {
        const __m128i middle = _mm_set1_epi16(-32768);
        first = _mm_xor_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from)), middle);
        last = _mm_xor_si128(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(from + 16)), middle);
    }
};

template <>
struct Neighbours<uint16_t, 1>
{
    __m128i all;
    explicit Neighbours(const uint8_t* from)
    {
        all = _mm_xor_si128(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(from)),
                            _mm_set1_epi16(-32768));
    }
};

// A weighed pair of rows: sums of twelve neighbours, or of four in the first vector alone.
struct Sums
{
    __m128i part[3];
};

inline Sums PairOfRows(const Neighbours<uint8_t, 3>& a, const Neighbours<uint8_t, 3>& b,
                       __m128i weights)
{
    const __m128i zero = _mm_setzero_si128();
    const __m128i low = _mm_unpacklo_epi8(a.all, b.all), high = _mm_unpackhi_epi8(a.all, b.all);
    return {{_mm_madd_epi16(_mm_unpacklo_epi8(low, zero), weights),
             _mm_madd_epi16(_mm_unpackhi_epi8(low, zero), weights),
             _mm_madd_epi16(_mm_unpacklo_epi8(high, zero), weights)}};
}

inline Sums PairOfRows(const Neighbours<uint8_t, 1>& a, const Neighbours<uint8_t, 1>& b,
                       __m128i weights)
{
    const __m128i pairs = _mm_unpacklo_epi8(_mm_unpacklo_epi8(a.all, b.all), _mm_setzero_si128());
    return {{_mm_madd_epi16(pairs, weights)}};
}

inline Sums PairOfRows(const Neighbours<uint16_t, 3>& a, const Neighbours<uint16_t, 3>& b,
                       __m128i weights)
{
    return {{_mm_madd_epi16(_mm_unpacklo_epi16(a.first, b.first), weights),
             _mm_madd_epi16(_mm_unpackhi_epi16(a.first, b.first), weights),
             _mm_madd_epi16(_mm_unpacklo_epi16(a.last, b.last), weights)}};
}

inline Sums PairOfRows(const Neighbours<uint16_t, 1>& a, const Neighbours<uint16_t, 1>& b,
                       __m128i weights)
{
    return {{_mm_madd_epi16(_mm_unpacklo_epi16(a.all, b.all), weights)}};
}

// The weights of two rows, in every pair.
inline __m128i WeightsOfRows(const WarpPhase& phase, int first)
{
    int two;
    __builtin_memcpy(&two, phase.down + first, 4);
    return _mm_set1_epi32(two);
}

inline __m128 Added(const Sums& a, const Sums& b, int part)
{
    return _mm_cvtepi32_ps(_mm_add_epi32(a.part[part], b.part[part]));
}

inline __m128 Weighed(__m128 columns, const WarpPhase& phase, int tap)
{
    return _mm_mul_ps(columns, _mm_load1_ps(phase.across + tap));
}

// Twelve neighbours are columns 0 0 0 1 | 1 1 2 2 | 2 3 3 3; the fourth place of each stays unused.
inline __m128 Across3(const Sums& upper, const Sums& lower, const WarpPhase& phase)
{
    const __m128 a = Added(upper, lower, 0), b = Added(upper, lower, 1), c = Added(upper, lower, 2);
    const __m128 ab = _mm_shuffle_ps(a, b, _MM_SHUFFLE(1, 0, 3, 3)); // 1 1 | 1 1
    const __m128 second = _mm_shuffle_ps(ab, ab, _MM_SHUFFLE(3, 3, 2, 1));
    const __m128 third = _mm_shuffle_ps(b, c, _MM_SHUFFLE(0, 0, 3, 2));
    const __m128 fourth = _mm_shuffle_ps(c, c, _MM_SHUFFLE(3, 3, 2, 1));
    return _mm_add_ps(_mm_add_ps(Weighed(a, phase, 0), Weighed(second, phase, 1)),
                      _mm_add_ps(Weighed(third, phase, 2), Weighed(fourth, phase, 3)));
}

inline __m128 Across1(const Sums& upper, const Sums& lower, const WarpPhase& phase)
{
    const __m128 parts = _mm_mul_ps(Added(upper, lower, 0), _mm_loadu_ps(phase.across));
    const __m128 two = _mm_add_ps(parts, _mm_shuffle_ps(parts, parts, _MM_SHUFFLE(2, 3, 0, 1)));
    return _mm_add_ps(two, _mm_movehl_ps(two, two));
}

template <typename T, int kComponents>
inline __m128 PixelAt(const WarpSource& source, int64_t x, int64_t y)
{
    const WarpPhase& across = source.phases[(x >> kPhaseShift) & kPhaseMask];
    const WarpPhase& down = source.phases[(y >> kPhaseShift) & kPhaseMask];
    const uint8_t* from = source.data + ((y >> kWarpPlaceBits) - 1) * source.stride +
                          ((x >> kWarpPlaceBits) - 1) * int64_t(kComponents) * int64_t(sizeof(T));
    using Row = Neighbours<T, kComponents>;
    const Sums upper = PairOfRows(Row(from), Row(from + source.stride), WeightsOfRows(down, 0));
    from += 2 * source.stride;
    const Sums lower = PairOfRows(Row(from), Row(from + source.stride), WeightsOfRows(down, 2));
    const __m128 mixed =
        kComponents == 3 ? Across3(upper, lower, across) : Across1(upper, lower, across);
    return sizeof(T) == 2 ? _mm_add_ps(mixed, _mm_set1_ps(32768.0f)) : mixed;
}

// A pixel's samples, clamped and rounded already.
template <int kComponents>
inline void Store(uint8_t* out, __m128i samples)
{
    const __m128i words = _mm_packs_epi32(samples, samples);
    const int four = _mm_cvtsi128_si32(_mm_packus_epi16(words, words));
    __builtin_memcpy(out, &four, kComponents);
}

// There is no unsigned packing of 32 bits yet: about the middle of the range it is signed.
template <int kComponents>
inline void Store(uint16_t* out, __m128i samples)
{
    const __m128i aboutMiddle = _mm_sub_epi32(samples, _mm_set1_epi32(32768));
    const __m128i words =
        _mm_xor_si128(_mm_packs_epi32(aboutMiddle, aboutMiddle), _mm_set1_epi16(-32768));
    const int64_t four = _mm_cvtsi128_si64(words);
    __builtin_memcpy(out, &four, kComponents * sizeof(uint16_t));
}

template <typename T, int kComponents>
void TunedRun(void* out, const WarpSource& from, const WarpRun& run)
{
    const WarpSource source = from; // bytes that are stored could be its own, for all that is known
    const __m128 top = _mm_set1_ps(sizeof(T) == 2 ? 65535.0f : 255.0f);
    const __m128 half = _mm_set1_ps(0.5f);
    T* pixel = static_cast<T*>(out);
    int64_t x = run.x, y = run.y;
    for (int i = 0; i < run.count; ++i, x += run.stepX, y += run.stepY, pixel += kComponents)
    {
        const __m128 mixed = PixelAt<T, kComponents>(source, x, y);
        const __m128 clamped = _mm_min_ps(_mm_max_ps(mixed, _mm_setzero_ps()), top);
        Store<kComponents>(pixel, _mm_cvttps_epi32(_mm_add_ps(clamped, half)));
    }
}
} // namespace

extern const WarpLoops kWarpLoopsSse2;
const WarpLoops kWarpLoopsSse2 = {
    {{TunedRun<uint8_t, 1>, TunedRun<uint8_t, 3>}, {TunedRun<uint16_t, 1>, TunedRun<uint16_t, 3>}}};
