#pragma once

#include "pipeline/FusionJob.h"
#include "tools/ToolDialogWnd.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

// What the two fusion dialogs do alike: opening, the slider, previews of what the view shows, the
// result, the ways out. Window thread only.

// What one of them is and knows. Its functions work on its model.
struct FusionToolKind
{
    int dialogId;
    SliderControl slider;
    std::wstring title;
    std::vector<std::pair<int, TextId>> texts; // of controls

    std::function<int()> value; // of the slider
    std::function<void(SliderMove, int thumb)> move;
    std::function<void()> setDefaults; // empty = there is no such button
    std::function<FusionTask(const CBxRect<int>& region)> task;
    std::function<Outcome()> store;          // into the settings, at OK
    std::function<void(HWND dialog)> opened; // this and the next may be empty
    std::function<void()> ended;

    bool peeksAtKeys; // waiting keys make a preview outdated, too
};

// Opens the dialog over the document's series. `sources` is that series as far as it has been read
// already, or null. Makes result and preview from the source first. False when memory is short or
// the dialog cannot be made, which the user has been told.
bool ShowFusionTool(const ToolHost& host, const FusionToolKind& kind,
                    std::unique_ptr<FusionSources> sources);

// The region that the dialog will begin with when that picture has been opened at 100 %.
CBxRect<int> RegionAt100(const ToolHost& host, const SBxPicBuf& picture);
