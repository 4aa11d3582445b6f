#pragma once

#include "alignment/Registration.h"
#include "pipeline/DecodeSource.h"

#include <functional>
#include <string>
#include <vector>

// Brings the sources of a series into register before they are fused: they are looked at once, and
// the step that follows resamples those that have moved. A series that stood still keeps its bits.

// What is seen where a source does not reach into the result.
enum class AlignmentBorder
{
    Crop,   // nothing: the result is the largest rectangle that all sources have
    Mirror, // its mirror image: the result has the size of the sources
};

struct SeriesAlignment
{
    SeriesRegistration found;   // nothing of a series that has not been looked at
    CBxSize<int> frame = {};    // of every source
    CBxRect<int> area = {};     // of the frame that stays, what the result shows
    bool changesSource = false; // otherwise every source stays as it is
};

// Reads the sources, one ahead on a second thread where `ahead` says so, and compares them. `comes`
// may be empty; it is told the number of each source that is read, and true cancels. Sources that
// cannot be read, or differ in kind, or are too small to tell, leave the series as it is: whoever
// fuses them says why. Fails when memory is short.
Outcome AlignSeries(SeriesAlignment* alignment, const std::vector<std::string>& paths,
                    AlignmentBorder border, bool ahead, const std::function<bool(int)>& comes,
                    const LoadOptions& options = {});

// What has to be done to each source. The alignment must stay as long as the step is used.
SourceStep StepOf(const SeriesAlignment& alignment);
