#pragma once

#include "fusion/FusionKernels.h"

// Weights one band level and adds it to the sums: every pixel counts for more where its
// surroundings are busy, where its colours are far from grey and where its brightness is close to
// `mid`. Fills in the job's spread and additions by depth and channel count, then runs over the
// task pool. One channel or three.
void VcWeighBand(FusionBandJob job, unsigned channels, unsigned bitsPerComponent);

// The same for the coarsest level, whose values are the Gaussian samples themselves (job.band is
// not read). Its formulas differ from the bands' on purpose. Serial: the level is tiny.
void VcWeighTop(const FusionBandJob& job, unsigned channels, unsigned bitsPerComponent);

// Squared spread of the well-exposedness. 7200 at 8 bits does not follow the formula of the other
// depths (which would give 5775); both are wanted as they are.
float VcExposureSpread(unsigned bitsPerComponent);
