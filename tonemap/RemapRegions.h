#pragma once

#include "base/RunControl.h"
#include "tonemap/Pyramid.h"
#include "tonemap/ToneMapParams.h"

// The remapping of local Laplacian filters (Paris, Hasinoff and Kautz, 2011): every coefficient of
// a Laplacian pyramid is taken from the pyramid of a remapped copy of its surroundings, remapped
// about the coefficient's own Gaussian value. Differences below sigma are detail and follow a power
// curve, larger ones are edges and are scaled by beta; below `noise` detail stays as it is.

constexpr int kRemapCurveEntries = 100000;

// Constants of a run, on the 0..255 scale.
struct RemapConstants
{
    float sigma;     // from here on a difference is an edge
    float noise;     // below it a difference is noise; the power curve rules from twice that on
    float curveStep; // difference per entry of the power curve
    float beta;      // gain of edges
    double alpha;    // exponent of the power curve
};

RemapConstants RemapConstantsOf(const ToneMapParams& params);

// curve[i] = (i / 1000)^alpha for kRemapCurveEntries entries.
void FillRemapCurve(float* curve, double alpha);

// v remapped about g.
float RemapSample(float v, float g, const RemapConstants& constants, const float* curve);

// Where a level's neighbourhoods live: `fine` is the level whose samples are remapped, at most
// three finer than the level itself; `size` is a neighbourhood's side there, `step` the distance of
// coefficients of `level` whose neighbourhoods do not touch.
struct RemapGrid
{
    int fine;
    int shift; // level - fine
    int size;
    int step;
};
RemapGrid RemapGridOf(int level);

// The filter as it is defined, one phase: remaps in workJ (a copy of the Gaussian level J, rows of
// W >> J samples) the neighbourhoods of every step-th coefficient of level l from (dx, dy) on.
// Columns and rows of the last, partial step are left out on purpose. W and H are the sides of
// level 0. Neighbourhoods do not overlap, so they are spread over threads.
void RemapRegions(float* workJ, int J, const float* Gl, int l, int W, int H, int size, int step,
                  int dx, int dy, const RemapConstants& constants, const float* curve);

// The remapped coefficients of one level, straight into set->laplace[level]: what the phases give,
// without working pyramids. Each coefficient is one weighted sum over its remapped neighbourhood.
// Coefficients of the last partial step keep their plain value. Rows are spread over threads; the
// bits do not depend on their number.
Outcome RemapLevel(PyramidSet* set, int level, const RemapConstants& constants, const float* curve,
                   const RunControl& control);

// Limits the loops of this thread and of threads that it starts later to that many threads; 0 goes
// back to as many as there are processors.
void LimitRemapThreads(int threads);
