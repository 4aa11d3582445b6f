// Overlapping 8 x 8 blocks are transformed, shrunk and averaged. Compiled by each
// DenoiseBlocks_*.cpp with its own instruction set inside an unnamed namespace; loops of eight are
// what the compiler turns into vectors, and a value never depends on their width.
//
// Eight rows at a time: the vertical transform is shared by all blocks that start in a row, so it
// is done once for whole rows, as is its inverse after the blocks have been added up.

// Ahead of a loop: what one round writes, no other round reads. A fact about the loop, not a wish:
// vectors need it, and each compiler has a word of its own for it.
#ifdef __clang__
#define VC_ROUNDS_APART _Pragma("clang loop vectorize(assume_safety)")
#else
#define VC_ROUNDS_APART _Pragma("GCC ivdep")
#endif

// 8-point orthonormal cosine transform, by even and odd halves. c[k] = cos(k pi / 16) / 2.
constexpr float kC1 = 0.49039264f, kC2 = 0.46193977f, kC3 = 0.41573481f, kC4 = 0.35355339f,
                kC5 = 0.27778512f, kC6 = 0.19134172f, kC7 = 0.09754516f;

// Of eight samples or coefficients `stride` apart, for each of `count` neighbours. Strides are
// known at run time only, so the compiler has to be told that neighbours do not meet.
static inline void Forward(float* __restrict out, const float* __restrict in, int outStride,
                           int inStride, int count)
{
    VC_ROUNDS_APART
    for (int i = 0; i < count; ++i)
    {
        const float* x = in + i;
        const float s0 = x[0] + x[7 * inStride], d0 = x[0] - x[7 * inStride];
        const float s1 = x[inStride] + x[6 * inStride], d1 = x[inStride] - x[6 * inStride];
        const float s2 = x[2 * inStride] + x[5 * inStride], d2 = x[2 * inStride] - x[5 * inStride];
        const float s3 = x[3 * inStride] + x[4 * inStride], d3 = x[3 * inStride] - x[4 * inStride];
        const float e0 = s0 + s3, e1 = s1 + s2, o0 = s0 - s3, o1 = s1 - s2;
        float* y = out + i;
        y[0] = kC4 * (e0 + e1);
        y[outStride] = (kC1 * d0 + kC3 * d1) + (kC5 * d2 + kC7 * d3);
        y[2 * outStride] = kC2 * o0 + kC6 * o1;
        y[3 * outStride] = (kC3 * d0 - kC7 * d1) - (kC1 * d2 + kC5 * d3);
        y[4 * outStride] = kC4 * (e0 - e1);
        y[5 * outStride] = (kC5 * d0 - kC1 * d1) + (kC7 * d2 + kC3 * d3);
        y[6 * outStride] = kC6 * o0 - kC2 * o1;
        y[7 * outStride] = (kC7 * d0 - kC5 * d1) + (kC3 * d2 - kC1 * d3);
    }
}

// The inverse, times `weight`, added to what is there.
static inline void AddInverse(float* __restrict out, const float* __restrict in, int outStride,
                              int inStride, int count, float weight)
{
    VC_ROUNDS_APART
    for (int i = 0; i < count; ++i)
    {
        const float* y = in + i;
        const float y1 = y[inStride], y3 = y[3 * inStride], y5 = y[5 * inStride],
                    y7 = y[7 * inStride];
        const float a = kC4 * (y[0] + y[4 * inStride]), b = kC4 * (y[0] - y[4 * inStride]);
        const float c = kC2 * y[2 * inStride] + kC6 * y[6 * inStride];
        const float d = kC6 * y[2 * inStride] - kC2 * y[6 * inStride];
        const float e0 = a + c, e1 = b + d, e2 = b - d, e3 = a - c;
        const float o0 = (kC1 * y1 + kC3 * y3) + (kC5 * y5 + kC7 * y7);
        const float o1 = (kC3 * y1 - kC7 * y3) - (kC1 * y5 + kC5 * y7);
        const float o2 = (kC5 * y1 - kC1 * y3) + (kC7 * y5 + kC3 * y7);
        const float o3 = (kC7 * y1 - kC5 * y3) + (kC3 * y5 - kC1 * y7);
        float* x = out + i;
        x[0] += weight * (e0 + o0);
        x[outStride] += weight * (e1 + o1);
        x[2 * outStride] += weight * (e2 + o2);
        x[3 * outStride] += weight * (e3 + o3);
        x[4 * outStride] += weight * (e3 - o3);
        x[5 * outStride] += weight * (e2 - o2);
        x[6 * outStride] += weight * (e1 - o1);
        x[7 * outStride] += weight * (e0 - o0);
    }
}

static inline float SumOfLanes(const float* lanes)
{
    return ((lanes[0] + lanes[4]) + (lanes[1] + lanes[5])) +
           ((lanes[2] + lanes[6]) + (lanes[3] + lanes[7]));
}

// Blocks that hold hardly more energy than noise would have four times as much cut from each
// coefficient: nothing is lost there, and what one coefficient has by chance is not taken for
// detail. From 1.3 to 2.2 times the noise's energy this fades to once.
static inline float CutFactor(const float* coefficients, const DenoiseBlockJob& job)
{
    float lanes[kBlock] = {};
    for (int v = 0; v < kBlock; ++v)
        for (int u = 0; u < kBlock; ++u)
        {
            const float c = coefficients[kBlock * v + u];
            lanes[u] += c * c * job.inverseNoise[kBlock * v + u];
        }
    const float fade = (2.2f - SumOfLanes(lanes)) * (1.0f / 0.9f);
    const float lifted = fade > 0.0f ? fade : 0.0f;
    return 1.0f + 3.0f * (lifted < 1.0f ? lifted : 1.0f);
}

// Takes noise out of the coefficients: of an energy e of which n is noise, (e - n) / e is left.
// Returns the block's weight: the less of the block was kept, the fewer of its errors were.
static inline float Shrink(float* __restrict coefficients, const DenoiseBlockJob& job)
{
    const float factor = CutFactor(coefficients, job);
    float kept[kBlock] = {};
    for (int v = 0; v < kBlock; ++v)
        for (int u = 0; u < kBlock; ++u)
        {
            float* c = coefficients + kBlock * v + u;
            const float energy = *c * *c;
            const float signal = (energy - factor * job.cut[kBlock * v + u]) / (energy + 1e-9f);
            const float gain = signal > 0.0f ? signal : 0.0f;
            *c *= gain;
            kept[u] += gain * gain;
        }
    return 1.0f / (1.0f + SumOfLanes(kept));
}

// out[8 * i + u] = in[u][i] and back.
static void Interleave(float* __restrict out, const float* __restrict in, int count)
{
    for (int i = 0; i < count; ++i)
        for (int u = 0; u < kBlock; ++u)
            out[kBlock * i + u] = in[u * count + i];
}

static void Separate(float* __restrict out, const float* __restrict in, int count)
{
    VC_ROUNDS_APART
    for (int i = 0; i < count; ++i)
        for (int u = 0; u < kBlock; ++u)
            out[u * count + i] = in[kBlock * i + u];
}

static inline void AddBlock(const DenoiseBlockJob& job, float* __restrict sums, float* weights,
                            const float* columns, int x)
{
    float coefficients[kBlock * kBlock];
    Forward(coefficients, columns + kBlock * x, kBlock, kBlock, kBlock);
    const float weight = Shrink(coefficients, job);
    AddInverse(sums + kBlock * x, coefficients, kBlock, kBlock, kBlock, weight);
    for (int i = 0; i < kBlock; ++i)
        weights[x + i] += weight;
}

// All blocks whose first row is y, into the rows of the range only.
static void AddStrip(const DenoiseBlockJob& job, int y, int first, int end, float* scratch)
{
    const int width = job.width, last = width - kBlock;
    float* rows = scratch;                  // [8][width]
    float* columns = rows + kBlock * width; // [width][8]
    float* sums = columns + kBlock * width; // [width][8]
    float* weights = sums + kBlock * width; // [width]
    Forward(rows, job.src + (long long)y * width, width, width, width);
    Interleave(columns, rows, width);
    for (int i = 0; i < (kBlock + 1) * width; ++i)
        sums[i] = 0.0f;
    for (int x = 0; x < last; x += job.step)
        AddBlock(job, sums, weights, columns, x);
    AddBlock(job, sums, weights, columns, last);
    Separate(columns, sums, width);
    for (int i = 0; i < kBlock * width; ++i)
        rows[i] = 0.0f;
    AddInverse(rows, columns, width, width, width, 1.0f);
    for (int i = 0; i < kBlock; ++i)
    {
        if (y + i < first || y + i >= end)
            continue;
        float* __restrict to = job.dst + (long long)(y + i) * width;
        float* __restrict weightTo = job.weights + (long long)(y + i) * width;
        const float* __restrict from = rows + (long long)i * width;
        for (int x = 0; x < width; ++x)
        {
            to[x] += from[x];
            weightTo[x] += weights[x];
        }
    }
}

static void DenoiseBlocks(const DenoiseBlockJob* job, int first, int end, float* scratch)
{
    const int width = job->width, last = job->height - kBlock;
    for (long long i = (long long)first * width; i < (long long)end * width; ++i)
        job->dst[i] = job->weights[i] = 0.0f;
    for (int y = 0; y < last; y += job->step)
        if (y + kBlock > first && y < end)
            AddStrip(*job, y, first, end, scratch);
    if (end > last)
        AddStrip(*job, last, first, end, scratch);
    for (long long i = (long long)first * width; i < (long long)end * width; ++i)
        job->dst[i] /= job->weights[i];
}

#undef VC_ROUNDS_APART
