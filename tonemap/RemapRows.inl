// One row of remapped Laplacian coefficients. Compiled by each RemapRows_*.cpp with its own
// instruction set inside an unnamed namespace.
//
// A coefficient is sum(weight * remapped(sample)) over its neighbourhood. The weights sum to zero,
// so the part of the remapped value that is common to all samples (the reference) is left out: it
// only adds rounding. Even and odd columns have different weights and are done in turn; each lane
// of a vector is a coefficient of its own, so the result does not depend on the vector's width.

constexpr int kLanes = 128; // coefficients at a time: their sums stay in the first-level cache

struct Curve
{
    float sigma, inverseNoise, curveStep, beta;
    const float* table;
};

// The remapped difference to the reference.
static inline float Remapped(float difference, const Curve& c)
{
    const float a = __builtin_fabsf(difference);
    const float detail = a < c.sigma ? a : c.sigma;
    const int index = int(detail / c.curveStep);
    float blend = a * c.inverseNoise - 1.0f;
    blend = blend > 0.0f ? blend : 0.0f;
    blend = blend < 1.0f ? blend : 1.0f;
    const float bent = detail + blend * (c.table[index] - detail);
    const float edge = c.sigma + (a - c.sigma) * c.beta;
    return __builtin_copysignf(a < c.sigma ? bent : edge, difference);
}

// sums[n] += the weighted remapped samples of four neighbourhood columns.
static void AddFour(float* __restrict sums, const float* __restrict reference, const float* s0,
                    const float* s1, const float* s2, const float* s3, const float* w, int blocks,
                    const Curve& curve)
{
    const Curve c = curve;
    const float w0 = w[0], w1 = w[1], w2 = w[2], w3 = w[3];
    for (int n = 0; n < 16 * blocks; ++n)
    {
        const float g = reference[n];
        sums[n] += (w0 * Remapped(s0[n] - g, c) + w1 * Remapped(s1[n] - g, c)) +
                   (w2 * Remapped(s2[n] - g, c) + w3 * Remapped(s3[n] - g, c));
    }
}

static void AddOne(float* __restrict sums, const float* __restrict reference, const float* s0,
                   float w0, int blocks, const Curve& curve)
{
    const Curve c = curve;
    for (int n = 0; n < 16 * blocks; ++n)
        sums[n] += w0 * Remapped(s0[n] - reference[n], c);
}

// The coefficients first, first + 2, ... (count of them) of a row.
static void RemapPiece(const RemapRowJob& job, int row, int first, int count, const Curve& curve)
{
    const int rowParity = row & 1, columnParity = first & 1;
    const int halfY = job.half[rowParity], halfX = job.half[columnParity];
    const int side = 2 * job.half[0] + 1; // rows of the weight table
    const float* table = job.weights[rowParity][columnParity];
    const float* gauss = job.gauss + (long long)row * job.width + first;
    const int blocks = (count + 15) / 16;

    float reference[kLanes], sums[kLanes];
    for (int n = 0; n < 16 * blocks; ++n)
    {
        reference[n] = gauss[2 * (n < count ? n : count - 1)];
        sums[n] = 0.0f;
    }
    const int centre = first << job.shift; // column in the fine level
    const auto column = [&](const float* fineRow, int x)
    {
        const int at = centre + x;
        const int phase = at & (job.phases - 1);
        return fineRow + (long long)phase * job.phaseStep + (at - phase) / job.phases;
    };
    for (int y = -halfY; y <= halfY; ++y)
    {
        const int fine = (row << job.shift) + y;
        const float* fineRow = job.phaseRows + (fine < 0 ? -fine : fine) * job.rowStep;
        const float* w = table + (y + job.half[0]) * side + job.half[0];
        int x = -halfX;
        for (; x + 3 <= halfX; x += 4)
            AddFour(sums, reference, column(fineRow, x), column(fineRow, x + 1),
                    column(fineRow, x + 2), column(fineRow, x + 3), w + x, blocks, curve);
        for (; x <= halfX; ++x)
            AddOne(sums, reference, column(fineRow, x), w[x], blocks, curve);
    }
    float* out = job.laplace + (long long)row * job.width + first;
    for (int n = 0; n < count; ++n)
        out[2 * n] = sums[n];
}

static void RemapRow(const RemapRowJob* job, int row)
{
    const Curve curve = {job->sigma, 1.0f / job->noise, job->curveStep, job->beta, job->curve};
    for (int parity = 0; parity < 2; ++parity)
        for (int first = parity; first < job->columns; first += 2 * kLanes)
        {
            const int left = (job->columns - first + 1) / 2;
            RemapPiece(*job, row, first, left < kLanes ? left : kLanes, curve);
        }
}
