#pragma once

#include "base/Outcome.h"
#include "fusion/FusionAccumulator.h"
#include "fusion/FusionKernels.h"
#include "picture/FloatPlane.h"

// The levels of one source and what weighting wants to know of them, for sources that are added at
// once and for those that are kept. Any thread.

CBxSize<int> FusionLevelSize(const VcFusionAccumulator& acc, unsigned level);

// Smaller levels are left out: nothing is reduced into them, added or composed.
bool CarriesBand(const CBxSize<int>& size);

// How the Gaussian samples of a level are stored.
FusionSamples SamplesOfLevel(const VcFusionAccumulator& acc, unsigned level);

// Gaussian levels of one plane, or of the three that share their weights.
struct SourceLevels
{
    int count = 0;                          // planes
    SBxPicBuf finest[3] = {};               // level 0, a component each; somebody else frees it
    FloatPlane gauss[3][kFusionLevelSlots]; // the others, in floats
};

// Makes room for all levels but the finest; those that nothing is reduced into are zero. Fails when
// memory is short. Without any reduction the finest level would be the coarsest as well: it counts
// as zero then, and whoever asks for fusions refuses such pictures.
Outcome AllocateLevels(SourceLevels* source, const VcFusionAccumulator& acc);

// Reduces a level into the next. Rows are spread over the task pool.
void MakeCoarser(SourceLevels* source, const VcFusionAccumulator& acc, unsigned level);

// A level with the sums that it goes to (`channelPlanes` as in VcAccumulatePlane), but for spread
// and additions. The job points into both.
FusionBandJob BandJobOf(const SourceLevels& source, float* const (*channelPlanes)[kFusionPlanes],
                        const VcFusionAccumulator& acc, unsigned level);
