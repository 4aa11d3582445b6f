#include "tonemap/Pyramid.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

void Subtract(float* dst, const float* a, const float* b, int width, int height)
{
    const int64_t count = int64_t(width) * height;
    for (int64_t i = 0; i < count; ++i)
        dst[i] = a[i] - b[i];
}

void Add(float* dst, const float* a, const float* b, int width, int height)
{
    const int64_t count = int64_t(width) * height;
    for (int64_t i = 0; i < count; ++i)
        dst[i] = a[i] + b[i];
}

void Scale(float* plane, int width, int height, float factor)
{
    const int64_t count = int64_t(width) * height;
    for (int64_t i = 0; i < count; ++i)
        plane[i] *= factor;
}

// A row of scratch holds one vertically filtered row and the mirrored samples at both of its ends.
static constexpr int kRowMargin = 2;

int PyrScratchBytes(int width)
{
    return (width + 2 * kRowMargin) * int(sizeof(float));
}

// Index within [0, size) after mirroring about the first and the last sample.
static int Mirrored(int index, int size)
{
    if (index < 0)
        index = -index;
    if (index >= size)
        index = 2 * (size - 1) - index;
    return std::clamp(index, 0, size - 1);
}

static const float* RowAt(const float* plane, int step, int row)
{
    return reinterpret_cast<const float*>(reinterpret_cast<const char*>(plane) +
                                          int64_t(step) * row);
}

static float* RowAt(float* plane, int step, int row)
{
    return reinterpret_cast<float*>(reinterpret_cast<char*>(plane) + int64_t(step) * row);
}

static void FilterFiveRows(float* __restrict out, const float* a, const float* b, const float* c,
                           const float* d, const float* e, int width)
{
    for (int x = 0; x < width; ++x)
        out[x] = (a[x] + e[x]) * 0.0625f + (b[x] + d[x]) * 0.25f + c[x] * 0.375f;
}

static void HalveRow(float* __restrict out, const float* row, int count)
{
    for (int x = 0; x < count; ++x)
        out[x] = (row[2 * x - 2] + row[2 * x + 2]) * 0.0625f +
                 (row[2 * x - 1] + row[2 * x + 1]) * 0.25f + row[2 * x] * 0.375f;
}

static void DownRows(const float* src, int srcStep, float* dst, int dstStep,
                     const CBxSize<int>& srcSize, int first, int end, void* scratch)
{
    const int width = srcSize.cx, height = srcSize.cy;
    float* row = static_cast<float*>(scratch) + kRowMargin;
    for (int y = first; y < end; ++y)
    {
        const auto source = [&](int offset)
        { return RowAt(src, srcStep, Mirrored(2 * y + offset, height)); };
        FilterFiveRows(row, source(-2), source(-1), source(0), source(1), source(2), width);
        row[-2] = row[Mirrored(-2, width)];
        row[-1] = row[Mirrored(-1, width)];
        row[width] = row[Mirrored(width, width)];
        HalveRow(RowAt(dst, dstStep, y), row, width / 2);
    }
}

void PyrDown(const float* src, int srcStep, float* dst, int dstStep, const CBxSize<int>& srcSize,
             void* scratch)
{
    DownRows(src, srcStep, dst, dstStep, srcSize, 0, srcSize.cy / 2, scratch);
}

static void DoubleRow(float* __restrict out, const float* row, int count)
{
    for (int x = 0; x < count; ++x)
    {
        out[2 * x] = (row[x - 1] + row[x + 1]) * 0.125f + row[x] * 0.75f;
        out[2 * x + 1] = (row[x] + row[x + 1]) * 0.5f;
    }
}

// One row of the doubled plane, `y`, into out.
static void UpRow(float* out, const float* src, int srcStep, const CBxSize<int>& srcSize, int y,
                  void* scratch)
{
    const int width = srcSize.cx, height = srcSize.cy;
    float* row = static_cast<float*>(scratch) + kRowMargin;
    // Mirroring in the raster with the inserted zeros: before the first sample comes the second,
    // behind the last one the last again.
    const auto source = [&](int at)
    { return RowAt(src, srcStep, at < 0 ? std::min(1, height - 1) : std::min(at, height - 1)); };
    const float* __restrict here = source(y / 2);
    const float* __restrict below = source(y / 2 + 1);
    if (y % 2 == 0)
    {
        const float* __restrict above = source(y / 2 - 1);
        for (int x = 0; x < width; ++x)
            row[x] = (above[x] + below[x]) * 0.125f + here[x] * 0.75f;
    }
    else
    {
        for (int x = 0; x < width; ++x)
            row[x] = (here[x] + below[x]) * 0.5f;
    }
    row[-1] = row[std::min(1, width - 1)];
    row[width] = row[width - 1];
    DoubleRow(out, row, width);
}

void PyrUp(const float* src, int srcStep, float* dst, int dstStep, const CBxSize<int>& srcSize,
           void* scratch)
{
    for (int y = 0; y < 2 * srcSize.cy; ++y)
        UpRow(RowAt(dst, dstStep, y), src, srcStep, srcSize, y, scratch);
}

CBxSize<int> LevelSize(const PyramidSet& set, int level)
{
    return {set.size.cx >> level, set.size.cy >> level};
}

void DownStep(PyramidSet* set, float* dst, const float* src, int level)
{
    const CBxSize<int> size = LevelSize(*set, level);
    const int step = size.cx * int(sizeof(float));
    PyrDown(src, step, dst, step / 2, size, set->scratch.data());
}

void UpStep(PyramidSet* set, float* dst, const float* src, int level)
{
    const CBxSize<int> size = LevelSize(*set, level + 1);
    const int step = size.cx * int(sizeof(float));
    PyrUp(src, step, dst, 2 * step, size, set->scratch.data());
}

Outcome AllocatePyramid(PyramidSet* set, float* plane, const CBxSize<int>& size, int levels)
{
    set->levels = levels;
    set->size = size;
    set->gauss[0] = plane;
    try
    {
        set->scratch.resize(size_t(PyrScratchBytes(size.cx)));
    }
    catch (const std::bad_alloc&)
    {
        return Outcome::Failed;
    }
    for (int l = 0; l <= levels; ++l)
    {
        const CBxSize<int> at = LevelSize(*set, l);
        const int64_t samples = int64_t(at.cx) * at.cy;
        if (l > 0)
        {
            set->owned[l].reset(VcAllocUnsetPlane(samples));
            set->gauss[l] = set->owned[l].get();
        }
        if (l < levels)
            set->laplace[l].reset(VcAllocUnsetPlane(samples));
        if (!set->gauss[l] || (l < levels && !set->laplace[l]))
            return Outcome::Failed;
    }
    return Outcome::Done;
}

// Expands level + 1 into dst row by row, and joins each row with the one of `other` while it is in
// the cache: the same bits as in two passes. dst and other have the size of `level`.
template <typename JoinFn>
static Outcome UpAndJoin(PyramidSet* set, float* dst, const float* other, int level,
                         const RunControl& control, JoinFn join)
{
    const CBxSize<int> fine = LevelSize(*set, level), coarse = LevelSize(*set, level + 1);
    const auto rows = [&](int first, int end)
    {
        for (int y = first; y < end; ++y)
        {
            float* row = dst + int64_t(y) * fine.cx;
            UpRow(row, set->gauss[level + 1], coarse.cx * int(sizeof(float)), coarse, y,
                  set->scratch.data());
            join(row, other + int64_t(y) * fine.cx, fine.cx);
        }
    };
    return RunInRows(fine.cy, fine.cx, control, rows);
}

Outcome BuildLevel(PyramidSet* set, int level, const RunControl& control)
{
    const CBxSize<int> size = LevelSize(*set, level);
    const int step = size.cx * int(sizeof(float));
    const float* fine = set->gauss[level];
    const auto down = [&](int first, int end) {
        DownRows(fine, step, set->gauss[level + 1], step / 2, size, first, end,
                 set->scratch.data());
    };
    const auto subtract = [](float* row, const float* gauss, int width)
    { Subtract(row, gauss, row, width, 1); };
    return InTurn(
        [&] { return RunInRows(size.cy / 2, 2 * size.cx, control, down); },
        [&] { return UpAndJoin(set, set->laplace[level].get(), fine, level, control, subtract); });
}

Outcome CollapsePyramid(PyramidSet* set, const RunControl& control)
{
    const auto add = [](float* row, const float* laplace, int width)
    { Add(row, row, laplace, width, 1); };
    Outcome outcome = Outcome::Done;
    for (int level = set->levels - 1; level >= 0 && outcome == Outcome::Done; --level)
        outcome = UpAndJoin(set, set->gauss[level], set->laplace[level].get(), level, control, add);
    return outcome;
}
