#pragma once

#include "fusion/FusionLevels.h"
#include "picture/Picture.h"

#include <functional>
#include <memory>
#include <vector>

// A source taken apart once, for fusing it again and again: another target grey changes nothing of
// what is in here. Sums come out with the same bits as from VcAccumulateImage.

struct PreparedSource
{
    Picture finest[3]; // a plane of each component
    SourceLevels levels;
};
using PreparedSourcePtr = std::shared_ptr<const PreparedSource>;

// Memory of a prepared source of that geometry, and of an accumulator.
int64_t VcPreparedBytes(const SBxPicBuf& geometry);
int64_t VcAccumulatorBytes(const SBxPicBuf& geometry);

// Takes a picture of one or three components apart, with levels as the accumulator has them. Null
// when memory is short.
PreparedSourcePtr VcPrepareSource(const VcFusionAccumulator& acc, const SBxPicBuf& picture);

// Makes the sums those of these sources, whatever they were. `stop` may be empty; it is asked again
// and again on the calling thread, and true leaves the sums worthless. True when it was stopped.
[[nodiscard]] bool VcSumPrepared(VcFusionAccumulator* acc,
                                 const std::vector<PreparedSourcePtr>& sources,
                                 const std::function<bool()>& stop);
