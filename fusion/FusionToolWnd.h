#pragma once

#include "app/Win.h"
#include "fusion/FusionJob.h"

// What the two fusion dialogs do alike: previews of what the view shows, the result, the ways out.
// Window thread only.

struct FusionTool
{
    HWND dialog = nullptr;
    HWND slider = nullptr;   // whose newer input makes a preview outdated
    bool peeksAtKeys = true; // keyboard input is looked at too
    FusionSources sources;   // the series
    FusionTask last = {};    // of the preview on the screen; no sources = none yet
    std::vector<bool> told;  // the user knows that this source cannot be used
    SBxPicBuf working = {};  // the preview's region
    bool computing = false;
};

void OpenFusionTool(FusionTool* tool, HWND dialog, int slider);
void ReleaseFusionTool(FusionTool* tool);

// The region that is looked at now.
CBxRect<int> RegionInView();

// Computes and shows the preview, unless it is the one on the screen already. One that gets
// outdated on the way is given up and tried again when the input has been dealt with.
void ShowFusionPreview(FusionTool* tool, const FusionTask& task);

// The timer of a preview that was given up.
constexpr UINT_PTR kPreviewTimer = 1;

// OK: the whole picture into the result. The frame is told how it went, and the dialog goes.
void FinishFusion(FusionTool* tool, const FusionTask& task);

// Cancel: the result is the source again, and the dialog goes.
void CancelFusion(FusionTool* tool);
