#include "tonemap/RemapRegions.h"

#include "base/InstructionSet.h"
#include "tonemap/RemapRows.h"
#include "tonemap/RemapWeights.h"

#include <algorithm>
#include <cmath>

#ifdef _OPENMP
#include <omp.h>
#endif

// The only file with OpenMP loops.

void LimitRemapThreads(int threads)
{
#ifdef _OPENMP
    omp_set_num_threads(threads > 0 ? threads : omp_get_num_procs());
#else
    (void)threads;
#endif
}

RemapConstants RemapConstantsOf(const ToneMapParams& params)
{
    RemapConstants constants;
    constants.sigma = float(double(float(params.contrast * 255.0)) + 0.0001);
    constants.noise = float(double(float(params.noiseAmplitude * 5.0)) * 2.55);
    constants.curveStep = constants.sigma / 1000.0f;
    constants.beta = float(params.equalization * 2.0);
    constants.alpha = params.details;
    return constants;
}

void FillRemapCurve(float* curve, double alpha)
{
    for (int i = 0; i < kRemapCurveEntries; ++i)
        curve[i] = float(std::pow(double(float(i) / 1000.0f), double(float(alpha))));
}

float RemapSample(float v, float g, const RemapConstants& k, const float* curve)
{
    const float d = v - g;
    const float a = std::fabs(d);
    if (d == 0.0f)
        return g;
    if (!(a < k.sigma))
    {
        const float e = (a - k.sigma) * k.beta;
        return d < 0.0f ? g - e - k.sigma : k.sigma + g + e;
    }
    float t = 1.0f;
    if (k.noise > a)
        t = 0.0f;
    else if (!(a > 2.0f * k.noise))
        t = (a - k.noise) / k.noise;
    const int index = std::min(int(a / k.curveStep), kRemapCurveEntries - 1);
    const float f = t * curve[index] + ((1.0f - t) * a) / k.sigma;
    return d < 0.0f ? g - k.sigma * f : g + k.sigma * f;
}

RemapGrid RemapGridOf(int level)
{
    RemapGrid grid;
    grid.fine = std::max(level - 3, 0);
    grid.shift = level - grid.fine;
    grid.size = 3 * (1 << (grid.shift + 2)) - 3;
    grid.step = int(std::ceil(float(grid.size) / float(1 << grid.shift)));
    return grid;
}

void RemapRegions(float* workJ, int J, const float* Gl, int l, int W, int H, int size, int step,
                  int dx, int dy, const RemapConstants& constants, const float* curve)
{
    const int shift = l - J, half = size / 2;
    const int levelWidth = W >> l, fineWidth = W >> J, fineHeight = H >> J;
    const int perRow = (levelWidth - dx) / step, rows = ((H >> l) - dy) / step;
#pragma omp parallel for schedule(static)
    for (int i = 0; i < perRow * rows; ++i)
    {
        const int yl = i / perRow * step + dy, xl = i % perRow * step + dx;
        const float g = Gl[int64_t(yl) * levelWidth + xl];
        const int top = (yl << shift) - half, left = (xl << shift) - half;
        const int right = std::min(left + size, fineWidth);
        for (int y = std::max(top, 0); y < std::min(top + size, fineHeight); ++y)
        {
            float* row = workJ + int64_t(y) * fineWidth;
            for (int x = std::max(left, 0); x < right; ++x)
                row[x] = RemapSample(row[x], g, constants, curve);
        }
    }
}

static RemapRowFn RemapRowInUse()
{
    return LoopsInUse<RemapRowFn>({nullptr, &kRemapRowSse2, &kRemapRowAvx2, &kRemapRowAvx512});
}

// Columns of a phase, with room for the mirrored ones on the left and for whole vectors on the
// right.
struct PhaseLayout
{
    int phases, margin, step;
    int64_t rowStep;
};

static PhaseLayout PhaseLayoutOf(const RemapGrid& grid, int fineWidth)
{
    PhaseLayout layout;
    layout.phases = 2 << grid.shift;
    layout.margin = (grid.size / 2 + layout.phases - 1) / layout.phases;
    layout.step = layout.margin + (fineWidth + layout.phases - 1) / layout.phases + 16;
    layout.rowStep = int64_t(layout.step) * layout.phases;
    return layout;
}

// One row of the fine level sorted into its phases; mirrored on the left, zeros on the right.
static void SortRow(float* to, const float* from, int width, const PhaseLayout& layout)
{
    for (int phase = 0; phase < layout.phases; ++phase)
    {
        float* out = to + int64_t(phase) * layout.step + layout.margin;
        for (int q = -layout.margin; q < 0; ++q)
            out[q] = from[std::min(-(q * layout.phases + phase), width - 1)];
        const int count = (width - phase + layout.phases - 1) / layout.phases;
        for (int q = 0; q < count; ++q)
            out[q] = from[q * layout.phases + phase];
        std::fill(out + count, to + int64_t(phase + 1) * layout.step, 0.0f);
    }
}

Outcome RemapLevel(PyramidSet* set, int level, const RemapConstants& constants, const float* curve,
                   const RunControl& control)
{
    const RemapGrid grid = RemapGridOf(level);
    const CBxSize<int> fine = LevelSize(*set, grid.fine), size = LevelSize(*set, level);
    // The truncating division of the phases: a coefficient counts if a whole step follows it.
    const int columns = size.cx - grid.step + 1, rows = size.cy - grid.step + 1;
    if (columns <= 0 || rows <= 0)
        return Outcome::Done;

    const RemapWeights weights = RemapWeightsOf(grid.shift);
    const PhaseLayout layout = PhaseLayoutOf(grid, fine.cx);
    const FloatPlane sorted(VcAllocUnsetPlane(layout.rowStep * fine.cy));
    if (!sorted)
        return Outcome::Failed;
    LoopStop stop(control);
    const float* source = set->gauss[grid.fine];
#pragma omp parallel for schedule(static)
    for (int y = 0; y < fine.cy; ++y)
        if (!stop.Wanted())
            SortRow(sorted.get() + y * layout.rowStep, source + int64_t(y) * fine.cx, fine.cx,
                    layout);

    float scaledCurve[1024];
    for (int i = 0; i < 1024; ++i)
        scaledCurve[i] = constants.sigma * curve[i];

    RemapRowJob job;
    job.phaseRows = sorted.get() + layout.margin;
    job.rowStep = layout.rowStep;
    job.phaseStep = layout.step;
    job.phases = layout.phases;
    job.shift = grid.shift;
    job.gauss = set->gauss[level];
    job.laplace = set->laplace[level].get();
    job.width = size.cx;
    job.columns = columns;
    job.sigma = constants.sigma;
    job.noise = constants.noise;
    job.curveStep = constants.curveStep;
    job.beta = constants.beta;
    job.curve = scaledCurve;
    for (int parity = 0; parity < 2; ++parity)
    {
        job.half[parity] = weights.half[parity];
        job.weights[parity][0] = weights.table[parity][0].data();
        job.weights[parity][1] = weights.table[parity][1].data();
    }

    const RemapRowFn remapRow = RemapRowInUse();
    // A row of a large photograph takes up to some thousandths of a second.
#pragma omp parallel for schedule(dynamic)
    for (int y = 0; y < rows; ++y)
        if (!stop.Wanted())
            remapRow(&job, y);
    return stop.Wanted() ? Outcome::Cancelled : Outcome::Done;
}
