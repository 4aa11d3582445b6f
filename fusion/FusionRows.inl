// The tuned loops of fusion, written so that the compiler vectorises them; each FusionRows_*.cpp
// compiles this source with its own instruction set inside an unnamed namespace. A sample's value
// never depends on the instruction set, on its place in a vector or on the thread.
//
// Reduce and expand take the two-dimensional kernel apart into its column and row taps (it is an
// outer product of symmetric ones) and filter vertically into a row of scratch first. Columns near
// the border, whose window is moved inward, are done one by one. Samples at equal distance from the
// centre are added before they are multiplied: less work, and a flat picture stays flat to the bit,
// where rounding noise would be taken for structure by the weights.

#include "fusion/FusionMath.inl"

// Scratch per row is on the stack in pieces of this many source columns.
constexpr int kPiece = 1024;

// One axis of the kernel: its middle, the two taps beside it and the two outer ones.
struct Taps
{
    float centre, side, outer;
};

static inline Taps TapsOf(const float kernel[5][5], float gain)
{
    const float centre = __builtin_sqrtf(kernel[2][2]);
    return {gain * centre, gain * (kernel[2][1] / centre), gain * (kernel[2][0] / centre)};
}

static inline float Filtered(const Taps& taps, float a, float b, float c, float d, float e)
{
    return taps.side * (b + d) + (taps.centre * c + taps.outer * (a + e));
}

// Expand sees every second sample of the window only: three with an even start, two with an odd.
static inline float FilteredEven(const Taps& taps, float a, float c, float e)
{
    return taps.centre * c + taps.outer * (a + e);
}

static inline float FilteredOdd(const Taps& taps, float b, float d)
{
    return taps.side * (b + d);
}

static inline int Smaller(int a, int b)
{
    return a < b ? a : b;
}

// First sample of the reduce window of destination sample i.
static inline int ReduceStart(int i, int srcSize)
{
    const int start = i < 2 ? 0 : 2 * i - 2;
    return start + 5 > srcSize ? srcSize - 5 : start;
}

// First position, in the doubled raster, of the expand window of destination sample i.
static inline int ExpandStart(int i, int dstSize)
{
    const int start = i < 3 ? 0 : i - 2;
    return start + 5 > dstSize ? dstSize - 5 : start;
}

// scratch[x - first] = the five source rows from `from` on, filtered vertically, for columns
// [first, end).
template <typename T>
static void ReduceColumns(float* __restrict scratch, const T* from, int srcW, const Taps& taps,
                          int first, int end)
{
    const T* a = from;
    const T* b = a + srcW;
    const T* c = b + srcW;
    const T* d = c + srcW;
    const T* e = d + srcW;
    for (int x = first; x < end; ++x)
        scratch[x - first] =
            Filtered(taps, float(a[x]), float(b[x]), float(c[x]), float(d[x]), float(e[x]));
}

template <typename T>
static void ReduceRows(float* dst, int dstW, int dstH, const FusionPlane* src,
                       const float kernel[5][5], int firstRow, int endRow)
{
    if (dstW < 5 || dstH < 5)
        return;
    const int srcW = src->width, srcH = src->height;
    const Taps taps = TapsOf(kernel, 1.0f);
    float scratch[2 * kPiece + 8];
    for (int i = firstRow; i < endRow; ++i)
    {
        const T* window =
            static_cast<const T*>(src->samples) + (long long)ReduceStart(i, srcH) * srcW;
        float* __restrict out = dst + (long long)i * dstW;
        for (int first = 0; first < dstW; first += kPiece)
        {
            const int end = Smaller(first + kPiece, dstW);
            const int base = ReduceStart(first, srcW);
            ReduceColumns(scratch, window, srcW, taps, base, ReduceStart(end - 1, srcW) + 5);
            const auto sample = [&](int j)
            {
                const float* s = scratch + (ReduceStart(j, srcW) - base);
                return Filtered(taps, s[0], s[1], s[2], s[3], s[4]);
            };
            // Inside, the window of column j starts at 2j - 2.
            int j = first;
            for (; j < Smaller(2, end); ++j)
                out[j] = sample(j);
            const int inner = Smaller((srcW - 3) / 2 + 1, end);
            const float* __restrict s = scratch + (2 * j - 2 - base);
            const int count = inner - j;
            for (int n = 0; n < count; ++n)
                out[j + n] = Filtered(taps, s[2 * n], s[2 * n + 1], s[2 * n + 2], s[2 * n + 3],
                                      s[2 * n + 4]);
            for (j = count > 0 ? inner : j; j < end; ++j)
                out[j] = sample(j);
        }
    }
}

// One row of expand, filtered vertically: scratch[x - first] for source columns [first, end). At
// the lower edge of an odd size the last sample of the window is missing.
static void ExpandColumns(float* __restrict scratch, const float* src, int srcW, int srcH, int dstH,
                          const Taps& taps, int row, int first, int end)
{
    const int start = ExpandStart(row, dstH);
    const int even = start + (start & 1);
    const float* a = src + (long long)(even / 2) * srcW;
    const float* b = a + srcW;
    if (even != start)
    {
        for (int x = first; x < end; ++x)
            scratch[x - first] = FilteredOdd(taps, a[x], b[x]);
    }
    else if (even + 4 < 2 * srcH)
    {
        const float* c = b + srcW;
        for (int x = first; x < end; ++x)
            scratch[x - first] = FilteredEven(taps, a[x], b[x], c[x]);
    }
    else
    {
        for (int x = first; x < end; ++x)
            scratch[x - first] = FilteredEven(taps, a[x], b[x], 0.0f);
    }
}

// out[j - first] for columns [first, end) of a row, at most 2 * kPiece of them.
static void ExpandPiece(float* __restrict out, int dstW, int dstH, const float* src, int srcW,
                        int srcH, const Taps& taps, int row, int first, int end)
{
    float scratch[kPiece + 8];
    const int base = ExpandStart(first, dstW) / 2;
    const int last = Smaller((ExpandStart(end - 1, dstW) + 4) / 2, srcW - 1);
    ExpandColumns(scratch, src, srcW, srcH, dstH, taps, row, base, last + 1);
    const auto sample = [&](int j)
    {
        const int start = ExpandStart(j, dstW);
        const float* s = scratch + ((start + 1) / 2 - base);
        if (start & 1)
            return FilteredOdd(taps, s[0], s[1]);
        return FilteredEven(taps, s[0], s[1], start + 4 < 2 * srcW ? s[2] : 0.0f);
    };
    // Inside, columns come in pairs: an even one sees three samples, an odd one two.
    int j = first;
    for (; j < end && (j < 4 || (j & 1)); ++j)
        out[j - first] = sample(j);
    const int inner = Smaller(Smaller(dstW, 2 * srcW) - 2, end);
    const int pairs = inner > j ? (inner - j) / 2 : 0;
    const float* __restrict s = scratch + (j / 2 - 1 - base);
    float* __restrict pair = out + (j - first);
    for (int n = 0; n < pairs; ++n)
    {
        pair[2 * n] = FilteredEven(taps, s[n], s[n + 1], s[n + 2]);
        pair[2 * n + 1] = FilteredOdd(taps, s[n + 1], s[n + 2]);
    }
    for (j += 2 * pairs; j < end; ++j)
        out[j - first] = sample(j);
}

static void ExpandRow(float* out, int dstW, int dstH, const FusionPlane* src,
                      const float kernel[5][5], int row, int firstColumn, int endColumn)
{
    if (dstW < 5 || dstH < 5)
        return;
    const Taps taps = TapsOf(kernel, 2.0f); // the gain of 4 is 2 on each axis
    for (int first = firstColumn; first < endColumn; first += 2 * kPiece)
        ExpandPiece(out + first, dstW, dstH, static_cast<const float*>(src->samples), src->width,
                    src->height, taps, row, first, Smaller(first + 2 * kPiece, endColumn));
}

// 1e-10f is the smallest float above 1e-10.
static void AddRatios(float* __restrict out, const float* __restrict sums,
                      const float* __restrict weights, int count)
{
    for (int i = 0; i < count; ++i)
    {
        const bool weighs = __builtin_fabsf(weights[i]) >= 1e-10f;
        const float ratio = sums[i] / (weighs ? weights[i] : 1.0f);
        out[i] += weighs ? ratio : 0.0f;
    }
}

template <typename T>
static void SplitPixels(T* __restrict a, T* __restrict b, T* __restrict c, const T* from, int width)
{
    for (int x = 0; x < width; ++x)
    {
        a[x] = from[3 * x];
        b[x] = from[3 * x + 1];
        c[x] = from[3 * x + 2];
    }
}

template <typename T>
static void SplitRow(void* const to[3], const void* from, int width)
{
    SplitPixels(static_cast<T*>(to[0]), static_cast<T*>(to[1]), static_cast<T*>(to[2]),
                static_cast<const T*>(from), width);
}

template <typename T>
static void ClampToSamples(T* __restrict to, const float* __restrict from, int count)
{
    const float top = float((1 << (8 * sizeof(T))) - 1);
    for (int x = 0; x < count; ++x)
    {
        const float lifted = from[x] > 0.0f ? from[x] : 0.0f;
        to[x] = T(int(lifted < top ? lifted : top));
    }
}

template <typename T>
static void JoinPixels(T* __restrict to, const T* a, const T* b, const T* c, int count)
{
    for (int x = 0; x < count; ++x)
    {
        to[3 * x] = a[x];
        to[3 * x + 1] = b[x];
        to[3 * x + 2] = c[x];
    }
}

template <typename T>
static void JoinRow(void* to, const float* const from[3], int width)
{
    T samples[3][kPiece];
    for (int first = 0; first < width; first += kPiece)
    {
        const int count = Smaller(kPiece, width - first);
        for (int c = 0; c < 3; ++c)
            ClampToSamples(samples[c], from[c] + first, count);
        JoinPixels(static_cast<T*>(to) + 3 * first, samples[0], samples[1], samples[2], count);
    }
}

#include "fusion/FusionWeigh.inl"

using Byte = unsigned char;
using Word = unsigned short;

constexpr FusionKernels TunedKernels()
{
    return {{nullptr, SplitRow<Byte>, SplitRow<Word>},
            {nullptr, JoinRow<Byte>, JoinRow<Word>},
            {ReduceRows<float>, ReduceRows<Byte>, ReduceRows<Word>},
            ExpandRow,
            AddRatios,
            {Weigh<float, 1>, Weigh<Byte, 1>, Weigh<Word, 1>},
            {Weigh<float, 3>, Weigh<Byte, 3>, Weigh<Word, 3>}};
}
