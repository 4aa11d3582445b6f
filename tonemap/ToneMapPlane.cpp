// The local Laplacian filter on one plane.

#include "tonemap/ToneMapPlane.h"

#include "tonemap/Pyramid.h"
#include "tonemap/RemapRegions.h"

#include <cstring>

// Working pyramid of the phases: one level more than coefficients are taken from.
struct WorkingPyramid
{
    FloatPlane gauss[16], laplace[16];
};

static Outcome AllocateWork(WorkingPyramid* work, const PyramidSet& set)
{
    for (int l = 0; l <= set.levels; ++l)
    {
        const CBxSize<int> size = LevelSize(set, l);
        work->gauss[l].reset(VcAllocPlane(int64_t(size.cx) * size.cy));
        work->laplace[l].reset(VcAllocPlane(int64_t(size.cx) * size.cy));
        if (!work->gauss[l] || !work->laplace[l])
            return Outcome::Failed;
    }
    return Outcome::Done;
}

// One phase: remap every step-th neighbourhood in a copy, take the copy apart, keep the
// coefficients in the middle of the neighbourhoods. Only the Laplacian of the level is ever looked
// at.
static void RunPhase(PyramidSet* set, WorkingPyramid* work, int level, const RemapGrid& grid,
                     int dx, int dy, const RemapConstants& constants, const float* curve)
{
    const CBxSize<int> fine = LevelSize(*set, grid.fine), size = LevelSize(*set, level);
    std::memcpy(work->gauss[grid.fine].get(), set->gauss[grid.fine],
                size_t(fine.cx) * size_t(fine.cy) * sizeof(float));
    RemapRegions(work->gauss[grid.fine].get(), grid.fine, set->gauss[level], level, set->size.cx,
                 set->size.cy, grid.size, grid.step, dx, dy, constants, curve);
    for (int m = grid.fine; m <= level; ++m)
        DownStep(set, work->gauss[m + 1].get(), work->gauss[m].get(), m);
    float* laplace = work->laplace[level].get();
    UpStep(set, laplace, work->gauss[level + 1].get(), level);
    Subtract(laplace, work->gauss[level].get(), laplace, size.cx, size.cy);
    for (int y = dy; y < size.cy; y += grid.step)
        for (int x = dx; x < size.cx; x += grid.step)
            set->laplace[level].get()[int64_t(y) * size.cx + x] = laplace[int64_t(y) * size.cx + x];
}

static Outcome RemapByPhases(PyramidSet* set, const RemapConstants& constants, const float* curve,
                             const RunControl& control)
{
    WorkingPyramid work;
    if (AllocateWork(&work, *set) != Outcome::Done)
        return Outcome::Failed;
    for (int level = 0; level < set->levels; ++level)
    {
        const RemapGrid grid = RemapGridOf(level);
        control.Advance(2);
        for (int dy = 0; dy < grid.step; ++dy)
            for (int dx = 0; dx < grid.step; ++dx)
            {
                RunPhase(set, &work, level, grid, dx, dy, constants, curve);
                if (control.Cancelled())
                    return Outcome::Cancelled;
            }
    }
    return Outcome::Done;
}

static Outcome RemapDirectly(PyramidSet* set, const RemapConstants& constants, const float* curve,
                             const RunControl& control)
{
    Outcome outcome = Outcome::Done;
    for (int level = 0; level < set->levels && outcome == Outcome::Done; ++level)
    {
        control.Advance(2);
        outcome = RemapLevel(set, level, constants, curve, control);
    }
    return outcome;
}

static Outcome BuildLevels(PyramidSet* set, const RunControl& control)
{
    Outcome outcome = Outcome::Done;
    for (int level = 0; level < set->levels && outcome == Outcome::Done; ++level)
    {
        control.Advance(1);
        outcome = BuildLevel(set, level, control);
    }
    return outcome;
}

Outcome ToneMapPlane(SBxPicBuf* out, const SBxPicBuf& in, int levels, const ToneMapParams& params,
                     const RunControl& control, ToneMapMethod method)
{
    if (out->data != in.data)
        CBxPicBufAPI::Copy(out, in);
    PyramidSet set;
    const FloatPlane curve(VcAllocPlane(kRemapCurveEntries));
    if (!curve)
        return Outcome::Failed;
    FillRemapCurve(curve.get(), params.details);
    const auto remap = method == ToneMapMethod::Phases ? RemapByPhases : RemapDirectly;
    float* finest = PicRow<float>(*out, 0);
    return InTurn(
        [&] {
            return AllocatePyramid(&set, finest, {in.width, in.height}, levels);
        },
        [&] { return BuildLevels(&set, control); },
        [&] { return remap(&set, RemapConstantsOf(params), curve.get(), control); },
        [&] { return CollapsePyramid(&set, control); });
}
