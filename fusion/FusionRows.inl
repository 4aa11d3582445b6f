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
static void ReduceColumns(float* __restrict scratch, const float* from, int srcW, const Taps& taps,
                          int first, int end)
{
    const float* a = from;
    const float* b = a + srcW;
    const float* c = b + srcW;
    const float* d = c + srcW;
    const float* e = d + srcW;
    for (int x = first; x < end; ++x)
        scratch[x - first] = Filtered(taps, a[x], b[x], c[x], d[x], e[x]);
}

static void ReduceRows(float* dst, const float* src, int dstW, int dstH, int srcW, int srcH,
                       const float kernel[5][5], int firstRow, int endRow)
{
    if (dstW < 5 || dstH < 5)
        return;
    const Taps taps = TapsOf(kernel, 1.0f);
    float scratch[2 * kPiece + 8];
    for (int i = firstRow; i < endRow; ++i)
    {
        const float* window = src + (long long)ReduceStart(i, srcH) * srcW;
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

static void ExpandRows(float* dst, const float* src, int dstW, int dstH, int srcW, int srcH,
                       const float kernel[5][5], int firstRow, int endRow)
{
    if (dstW < 5 || dstH < 5)
        return;
    const Taps taps = TapsOf(kernel, 2.0f); // the gain of 4 is 2 on each axis
    float scratch[kPiece + 8];
    for (int i = firstRow; i < endRow; ++i)
    {
        float* __restrict out = dst + (long long)i * dstW;
        for (int first = 0; first < dstW; first += 2 * kPiece)
        {
            const int end = Smaller(first + 2 * kPiece, dstW);
            const int base = ExpandStart(first, dstW) / 2;
            const int last = Smaller((ExpandStart(end - 1, dstW) + 4) / 2, srcW - 1);
            ExpandColumns(scratch, src, srcW, srcH, dstH, taps, i, base, last + 1);
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
            for (; j < Smaller(4, end); ++j)
                out[j] = sample(j);
            const int inner = Smaller(Smaller(dstW, 2 * srcW) - 2, end);
            const int pairs = inner > j ? (inner - j) / 2 : 0;
            const float* __restrict s = scratch + (j / 2 - 1 - base);
            float* __restrict pair = out + j;
            for (int n = 0; n < pairs; ++n)
            {
                pair[2 * n] = FilteredEven(taps, s[n], s[n + 1], s[n + 2]);
                pair[2 * n + 1] = FilteredOdd(taps, s[n + 1], s[n + 2]);
            }
            for (j += 2 * pairs; j < end; ++j)
                out[j] = sample(j);
        }
    }
}

// Four edge neighbours against the centre. In double, because the difference of large samples is
// what decides between structure and rounding noise.
static inline float Laplacian(float up, float left, float centre, float right, float down)
{
    return float(double(up) + double(left) - 4.0 * double(centre) + double(right) + double(down));
}

static inline float Weight1(float value, float lap, float mid, float spread)
{
    const float d = value - mid;
    const float e = Exp(-(d * d / spread)) + 1e-5f;
    const float c = __builtin_sqrtf(__builtin_fabsf(lap) + 1e-5f);
    return float(double(c * e * e) + 1e-5);
}

// The three factors each have the exponent 0.16 (contrast half of it, exposure twice), so one power
// of their product serves: (sqrt(c) * s * e^2)^0.16. The product stays within 1e-18 .. 1e8.
static inline float Weight3(float g0, float g1, float g2, float lap, float mid, float spread)
{
    const float m = (g0 + g1 + g2) / 3.0f;
    const float d = m - mid;
    const float e = Exp(-(d * d / spread)) + 1e-5f;
    const float c = __builtin_fabsf(lap) / 3.0f + 1e-5f;
    const float d0 = m - g0, d1 = m - g1, d2 = m - g2;
    const double variance = double(d0 * d0 + d1 * d1 + d2 * d2) / 3.0;
    const float s = float(__builtin_sqrt(variance) + 1e-5);
    return float(double(Pow016(__builtin_sqrtf(c) * s * (e * e))) + 1e-5);
}

// Centre of the 3x3 window of a sample: itself, or its inward neighbour on a border.
static inline int WindowCentre(int i, int size)
{
    return i < 1 ? 1 : (i > size - 2 ? size - 2 : i);
}

// to[n] += weight[n] * value[n]. The qualifiers must stand on parameters to be of use.
static void AddWeighted(float* __restrict to, const float* __restrict weight,
                        const float* __restrict value, int count)
{
    for (int n = 0; n < count; ++n)
        to[n] += weight[n] * value[n];
}

static void AddPlain(float* __restrict to, const float* __restrict value, int count)
{
    for (int n = 0; n < count; ++n)
        to[n] += value[n];
}

static void WeighColumns1(const FusionBandJob& job, int row, int first, int end, int shift)
{
    const long long at = (long long)row * job.width;
    const long long centreAt = (long long)WindowCentre(row, job.height) * job.width + shift;
    const float* g = job.gauss[0] + at;
    const float* middle = job.gauss[0] + centreAt;
    const float* up = middle - job.width;
    const float* down = middle + job.width;
    const float mid = job.mid, spread = job.spread;

    // Weights of a piece first, then the sums: the compiler sees loops that it can vectorise.
    float piece[kPiece];
    for (int from = first; from < end; from += kPiece)
    {
        const int count = Smaller(kPiece, end - from);
        for (int n = 0; n < count; ++n)
        {
            const long long x = from + n;
            const float lap = Laplacian(up[x], middle[x - 1], middle[x], middle[x + 1], down[x]);
            piece[n] = Weight1(g[x], lap, mid, spread);
        }
        for (int addition = 0; addition < job.additions; ++addition)
        {
            AddPlain(job.weights + at + from, piece, count);
            AddWeighted(job.sums[0] + at + from, piece, job.band[0] + at + from, count);
        }
    }
}

// The first and the last column use their neighbour's window; all others their own.
static void Weigh1(const FusionBandJob* job, int row, int firstColumn, int endColumn)
{
    int x = firstColumn;
    if (x == 0 && x < endColumn)
        WeighColumns1(*job, row, x++, 1, 1);
    const int inner = Smaller(endColumn, job->width - 1);
    if (x < inner)
        WeighColumns1(*job, row, x, inner, 0);
    if (endColumn == job->width && endColumn > x)
        WeighColumns1(*job, row, job->width - 1, job->width, -1);
}

static void WeighColumns3(const FusionBandJob& job, int row, int first, int end, int shift)
{
    const long long at = (long long)row * job.width;
    const long long centreAt = (long long)WindowCentre(row, job.height) * job.width + shift;
    const float* g0 = job.gauss[0] + at;
    const float* g1 = job.gauss[1] + at;
    const float* g2 = job.gauss[2] + at;
    const float* c0 = job.gauss[0] + centreAt;
    const float* c1 = job.gauss[1] + centreAt;
    const float* c2 = job.gauss[2] + centreAt;
    const long long next = job.width;
    const float mid = job.mid, spread = job.spread;

    float piece[kPiece];
    for (int from = first; from < end; from += kPiece)
    {
        const int count = Smaller(kPiece, end - from);
        for (int n = 0; n < count; ++n)
        {
            const long long x = from + n;
            const float lap = Laplacian(c0[x - next] + c1[x - next] + c2[x - next],
                                        c0[x - 1] + c1[x - 1] + c2[x - 1], c0[x] + c1[x] + c2[x],
                                        c0[x + 1] + c1[x + 1] + c2[x + 1],
                                        c0[x + next] + c1[x + next] + c2[x + next]);
            piece[n] = Weight3(g0[x], g1[x], g2[x], lap, mid, spread);
        }
        for (int addition = 0; addition < job.additions; ++addition)
        {
            AddPlain(job.weights + at + from, piece, count);
            for (int c = 0; c < 3; ++c)
                AddWeighted(job.sums[c] + at + from, piece, job.band[c] + at + from, count);
        }
    }
}

static void Weigh3(const FusionBandJob* job, int row, int firstColumn, int endColumn)
{
    int x = firstColumn;
    if (x == 0 && x < endColumn)
        WeighColumns3(*job, row, x++, 1, 1);
    const int inner = Smaller(endColumn, job->width - 1);
    if (x < inner)
        WeighColumns3(*job, row, x, inner, 0);
    if (endColumn == job->width && endColumn > x)
        WeighColumns3(*job, row, job->width - 1, job->width, -1);
}
