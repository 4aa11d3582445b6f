#pragma once

#include "base/Geometry.h"
#include "base/Outcome.h"
#include "base/RunControl.h"
#include "picture/FloatPlane.h"
#include "picture/PicBuf.h"

#include <vector>

// Gaussian and Laplacian pyramids of packed float planes with the binomial kernel
// [1 4 6 4 1] / 16 in both directions (Burt and Adelson, 1983). Samples beyond an edge are mirrored
// without repeating the edge sample; expanding mirrors between its inserted zeros, so that a flat
// plane stays flat everywhere. Not the filters of exposure fusion, which have another kernel and
// move their window inside instead.
//
// Everything runs on the calling thread. Rows have no gaps; steps are bytes from row to row.

// dst[i] = a[i] - b[i]; dst may be b.
void Subtract(float* dst, const float* a, const float* b, int width, int height);

// dst[i] = a[i] + b[i]; dst may be a.
void Add(float* dst, const float* a, const float* b, int width, int height);

// plane[i] *= factor.
void Scale(float* plane, int width, int height, float factor);

// Bytes of scratch that PyrDown and PyrUp want for planes up to `width` samples wide.
int PyrScratchBytes(int width);

// Filter and halve. Both sides of srcSize are even; dst has half of each.
void PyrDown(const float* src, int srcStep, float* dst, int dstStep, const CBxSize<int>& srcSize,
             void* scratch);

// Double and filter; dst has twice both sides of srcSize.
void PyrUp(const float* src, int srcStep, float* dst, int dstStep, const CBxSize<int>& srcSize,
           void* scratch);

// A plane's pyramids. gauss[0] is the caller's plane, everything else is owned. laplace has one
// level less: the coarsest Gaussian plays its part.
struct PyramidSet
{
    int levels = 0; // halvings
    CBxSize<int> size = {0, 0};
    float* gauss[16] = {};
    FloatPlane owned[16];   // gauss[1..levels]
    FloatPlane laplace[16]; // 0..levels - 1
    std::vector<char> scratch;
};

CBxSize<int> LevelSize(const PyramidSet& set, int level);

// One step of each direction inside a set: level to level + 1, and level + 1 expanded into dst,
// which has the size of `level`.
void DownStep(PyramidSet* set, float* dst, const float* src, int level);
void UpStep(PyramidSet* set, float* dst, const float* src, int level);

// Allocates the levels above `plane`, whose sides are multiples of 2^levels. Fails when memory
// is short.
Outcome AllocatePyramid(PyramidSet* set, float* plane, const CBxSize<int>& size, int levels);

// One level of the build: gauss[level + 1] and laplace[level] from gauss[level].
Outcome BuildLevel(PyramidSet* set, int level, const RunControl& control = {});

// Puts gauss[0] together again from the Laplacian levels and the coarsest Gaussian.
Outcome CollapsePyramid(PyramidSet* set, const RunControl& control = {});
