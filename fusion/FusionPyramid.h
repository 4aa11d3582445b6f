#pragma once

#include "fusion/FusionAccumulator.h"

// The two routes of VcAccumulateImage: one plane into one channel, and three planes with common
// weights. `channelPlanes` is the channel's entry (or the three entries) of acc->planes.
[[nodiscard]] bool VcAccumulatePlane(float* const (*channelPlanes)[kFusionPlanes],
                                     const SBxPicBuf& plane, const VcFusionAccumulator& acc,
                                     FusionStop stop = nullptr);
[[nodiscard]] bool VcAccumulatePlanes3(float* const (*channelPlanes)[kFusionPlanes],
                                       const SBxPicBuf planes[3], const VcFusionAccumulator& acc,
                                       FusionStop stop = nullptr);

// The two routes of VcComposeResult: the blend of one channel, and of three at once, into a picture
// of three components.
[[nodiscard]] bool VcComposePlane(SBxPicBuf* plane, const VcFusionAccumulator& acc,
                                  unsigned channel);
[[nodiscard]] bool VcComposePlanes3(SBxPicBuf* picture, const VcFusionAccumulator& acc);
