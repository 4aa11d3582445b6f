#pragma once

#include "pipeline/FusionSources.h"
#include "view/ImageView.h"

#include <functional>
#include <vector>

// The fusion of a dialog's series: the part of it that is looked at as a preview, on up to three
// threads, or whole pictures for the result.

// What is fused for a preview: what the view shows of a picture of that size and 256 picture
// pixels around it, so that the edges of what is seen know their surroundings. Empty (right not
// above left, or bottom not above top) when the picture is out of sight.
CBxRect<int> FusionRegionOf(const ImageView& view, int width, int height);

// Sources [first, end) of a series that one thread adds up. The first range is the caller's own.
struct SourceRange
{
    int first, end;
};
std::vector<SourceRange> FusionRangesOf(int sources);

struct FusionTask
{
    CBxRect<int> region; // of the sources
    int sources;         // the first so many of the series
    unsigned exposureMid;
};

// Nothing would change by doing the one after the other.
bool SameTask(const FusionTask& a, const FusionTask& b);

// Writes the fusion of the region into `result`, a picture of the region's size. `outdated` may be
// empty; it is asked on the calling thread between sources and while others are waited for, and
// true cancels. Sources that do not load contribute nothing. Fails when there is nothing to fuse or
// memory is short. After anything but Done the result is as it was.
Outcome FuseRegion(SBxPicBuf* result, FusionSources* sources, const FusionTask& task,
                   const std::function<bool()>& outdated);

// The same on whole pictures and on the calling thread alone, one source after the other. `comes`
// may be empty; it is told the number of each source before that is loaded.
Outcome FuseWhole(SBxPicBuf* result, FusionSources* sources, const FusionTask& task,
                  const std::function<void(int)>& comes = nullptr);
