#pragma once

#include "pipeline/FusionJob.h"
#include "tools/Parameters.h"

// What the fusion dialog with the Exposure slider knows: the grey that well exposed pixels are
// close to. The three strengths are kept from file to file; the weights have fixed exponents and
// nothing depends on them.

struct ExposureFusionModel
{
    ToolNumbers numbers;
    int seriesCount;
};

ExposureFusionModel OpenExposureFusion(const ToolNumbers& stored, int seriesCount);

// True when the value is another one now, and the preview with it.
bool MoveExposure(ExposureFusionModel* model, SliderMove move, int thumb);

void SetFusionDefaults(ExposureFusionModel* model);

FusionTask ExposureTask(const ExposureFusionModel& model, const CBxRect<int>& region);

void StoreExposureFusion(const ExposureFusionModel& model, ToolNumbers* stored);

// What the keyboard hook of the dialog does with a key: it swallows all of them, and a released
// arrow pages through the series. Only code 0 is the key itself; others are looks at it in passing.
struct HookedKey
{
    bool passOn; // to the next hook
    int page;    // -1 previous source, 1 next source, 0 neither
};
HookedKey KeyOfHook(int code, unsigned virtualKey, bool released);
