// The tuned loops of fusion, written so that the compiler vectorises them; each FusionRows_*.cpp
// compiles this source with its own instruction set inside an unnamed namespace. A sample's value
// never depends on the instruction set, on its place in a vector or on the thread.
//
// Reduce and expand take the two-dimensional kernel apart into its column and row taps (it is an
// outer product) and filter vertically into a row of scratch first. Columns near the border, whose
// window is moved inward, are done one by one.

#include "fusion/FusionMath.inl"

// Scratch per row is on the stack in pieces of this many source columns.
constexpr int kPiece = 1024;

struct Taps
{
    float column[5], row[5];
};

static inline Taps TapsOf(const float kernel[5][5])
{
    const float centre = __builtin_sqrtf(kernel[2][2]);
    Taps taps;
    for (int i = 0; i < 5; ++i)
    {
        taps.column[i] = kernel[i][2] / centre;
        taps.row[i] = kernel[2][i] / centre;
    }
    return taps;
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
    const float k0 = taps.column[0], k1 = taps.column[1], k2 = taps.column[2],
                k3 = taps.column[3], k4 = taps.column[4];
    for (int x = first; x < end; ++x)
        scratch[x - first] = k0 * a[x] + k1 * b[x] + k2 * c[x] + k3 * d[x] + k4 * e[x];
}

static void ReduceRows(float* dst, const float* src, int dstW, int dstH, int srcW, int srcH,
                       const float kernel[5][5], int firstRow, int endRow)
{
    if (dstW < 5 || dstH < 5)
        return;
    const Taps taps = TapsOf(kernel);
    const float k0 = taps.row[0], k1 = taps.row[1], k2 = taps.row[2], k3 = taps.row[3],
                k4 = taps.row[4];
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
            const auto sample = [&](int j) {
                const float* s = scratch + (ReduceStart(j, srcW) - base);
                return k0 * s[0] + k1 * s[1] + k2 * s[2] + k3 * s[3] + k4 * s[4];
            };
            // Inside, the window of column j starts at 2j - 2.
            int j = first;
            for (; j < Smaller(2, end); ++j)
                out[j] = sample(j);
            const int inner = Smaller((srcW - 3) / 2 + 1, end);
            const float* __restrict s = scratch + (2 * j - 2 - base);
            const int count = inner - j;
            for (int n = 0; n < count; ++n)
                out[j + n] = k0 * s[2 * n] + k1 * s[2 * n + 1] + k2 * s[2 * n + 2] +
                             k3 * s[2 * n + 3] + k4 * s[2 * n + 4];
            for (j = count > 0 ? inner : j; j < end; ++j)
                out[j] = sample(j);
        }
    }
}

// One row of expand, filtered vertically: scratch[x - first] for source columns [first, end).
static void ExpandColumns(float* __restrict scratch, const float* src, int srcW, int srcH, int dstH,
                          const Taps& taps, int row, int first, int end)
{
    const int start = ExpandStart(row, dstH);
    const int stop = Smaller(start + 5, 2 * srcH);
    const int even = start + (start & 1);
    const float* a = src + (long long)(even / 2) * srcW;
    const float ka = 2.0f * taps.column[even - start];
    const int rows = (stop - even + 1) / 2;
    if (rows >= 3)
    {
        const float* b = a + srcW;
        const float* c = b + srcW;
        const float kb = 2.0f * taps.column[even - start + 2];
        const float kc = 2.0f * taps.column[even - start + 4];
        for (int x = first; x < end; ++x)
            scratch[x - first] = ka * a[x] + kb * b[x] + kc * c[x];
    }
    else if (rows == 2)
    {
        const float* b = a + srcW;
        const float kb = 2.0f * taps.column[even - start + 2];
        for (int x = first; x < end; ++x)
            scratch[x - first] = ka * a[x] + kb * b[x];
    }
    else
    {
        for (int x = first; x < end; ++x)
            scratch[x - first] = ka * a[x];
    }
}

static void ExpandRows(float* dst, const float* src, int dstW, int dstH, int srcW, int srcH,
                       const float kernel[5][5], int firstRow, int endRow)
{
    if (dstW < 5 || dstH < 5)
        return;
    const Taps taps = TapsOf(kernel);
    const float k0 = 2.0f * taps.row[0], k1 = 2.0f * taps.row[1], k2 = 2.0f * taps.row[2],
                k3 = 2.0f * taps.row[3], k4 = 2.0f * taps.row[4];
    const float doubled[5] = {k0, k1, k2, k3, k4};
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
            const auto sample = [&](int j) {
                const int start = ExpandStart(j, dstW);
                const int stop = Smaller(start + 5, 2 * srcW);
                float sum = 0.0f;
                for (int c = start + (start & 1); c < stop; c += 2)
                    sum += doubled[c - start] * scratch[c / 2 - base];
                return sum;
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
                pair[2 * n] = k0 * s[n] + k2 * s[n + 1] + k4 * s[n + 2];
                pair[2 * n + 1] = k1 * s[n + 1] + k3 * s[n + 2];
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
