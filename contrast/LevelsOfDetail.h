#pragma once

#include "base/Geometry.h"
#include "base/Outcome.h"
#include "base/RunControl.h"
#include "picture/FloatPlane.h"
#include "picture/PicBuf.h"

// Smart contrast: a picture is split into a Laplacian pyramid once and put together again with a
// gain per level, as often as a slider moves. Every component is treated as it is stored, and
// samples keep their own scale (0..255 or 0..65535). The filters are those of exposure fusion
// (VcReduce and VcExpand with the same kernel), whose windows move inside at the borders; the
// picture is therefore padded on all sides first, and the padding cut off afterwards.
//
// Rows are split over the task pool; results have the same bits whatever the number of threads.

constexpr int kDetailLevels = 8; // the most levels, and the number of sliders

// What a level's number means: a tenth of it, so that 10 leaves the level as it is.
float LevelGain(int lod);

// Halvings of the shorter side while it has at least 11 samples, at most kDetailLevels.
int CountDetailLevels(int width, int height);

// A picture taken apart. The Laplacian planes and the coarsest Gaussian of each component are what
// counts; the finer Gaussians are only ever on the way up or down, so one set of them serves all
// components, and every recomposition overwrites it.
struct LevelsOfDetail
{
    int components = 0, bitsPerComponent = 0;
    int width = 0, height = 0; // of the padded picture
    int levels = 0;            // L
    int levelWidth[kDetailLevels + 1] = {}, levelHeight[kDetailLevels + 1] = {};
    float kernel[5][5] = {};
    FloatPlane laplace[3][kDetailLevels]; // per component, levels 0..L-1
    FloatPlane coarsest[3];               // per component, Gaussian level L
    FloatPlane gauss[kDetailLevels];      // levels 0..L-1 of the component at hand
};

// Frees all planes; copes with a half-filled record.
void ReleaseLevelsOfDetail(LevelsOfDetail* record);

// Takes the padded picture apart (1 or 3 components, 8 or 16 bits) into at most maxLevels levels;
// whatever the record held is released. Fails when memory is short; whether to cancel is asked once
// a level. The record is empty in either case.
Outcome Decompose(LevelsOfDetail* record, const SBxPicBuf& padded, int maxLevels,
                  const RunControl& control = {});

// Puts all components together again. gains[i] belongs to level i; those from L on are not looked
// at, since the coarsest level has no gain. Fails when the output has not the components,
// bits and size of the record.
Outcome Recompose(SBxPicBuf* padded, LevelsOfDetail* record, const float gains[kDetailLevels],
                  const RunControl& control = {});

// The same for a rectangle of the output, which is clipped to it; the rest of the output stays as
// it is. Of each level only what that takes is put together, and the pixels are those of the whole.
Outcome RecomposeRegion(SBxPicBuf* padded, LevelsOfDetail* record, const float gains[kDetailLevels],
                        const CBxRect<int>& region);

// The same for one component of the output. With autoStretch, its smallest and largest value are
// spread over the whole range.
Outcome RecomposeComponent(SBxPicBuf* padded, LevelsOfDetail* record, bool autoStretch,
                           const float gains[kDetailLevels], int component,
                           const RunControl& control = {});

// The whole job for one picture, component by component, so that a third of the planes is enough
// for colour. `out` has the geometry of `in` and may be `in`. Advances kSmartContrastSteps times a
// component; polls once a level. `out` is worthless unless it is done.
constexpr int kSmartContrastSteps = 2;
Outcome SmartContrastPicture(SBxPicBuf* out, const SBxPicBuf& in, const int lod[kDetailLevels],
                             const RunControl& control);
