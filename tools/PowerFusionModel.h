#pragma once

#include "pipeline/FusionJob.h"
#include "tools/Parameters.h"

// What the fusion dialog with the Power slider knows: how many of the series' sources are fused.

constexpr unsigned kPowerTargetGrey = 128; // whatever the file says

struct PowerFusionModel
{
    ToolNumbers numbers;
    int seriesCount; // sources that there are; a series that was stopped has fewer than 39
};

PowerFusionModel OpenPowerFusion(const ToolNumbers& stored, int seriesCount);

// True when the value is another one now, and the preview with it.
bool MovePower(PowerFusionModel* model, SliderMove move, int thumb);

FusionTask PowerTask(const PowerFusionModel& model, const CBxRect<int>& region);

// OK keeps the slider's value. The other two of the group go back to the file as they were read:
// the target grey that is used here is not the one that is stored.
void StorePower(const PowerFusionModel& model, ToolNumbers* stored);
