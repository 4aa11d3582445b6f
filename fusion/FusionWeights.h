#pragma once

#include "fusion/FusionKernels.h"

// Weights one band level and adds it to the sums: every pixel counts for more where its
// surroundings are busy, where its colours are far from grey and where its brightness is close to
// `mid`. Fills in the job's spread and additions by depth and channel count, then runs over the
// task pool. One channel or three; `samples` says how the job's Gaussian planes are stored. Rows
// [firstRow, endRow) of the level.
void VcWeighBand(FusionBandJob job, FusionSamples samples, unsigned channels,
                 unsigned bitsPerComponent, int firstRow, int endRow);

// Squared spread of the well-exposedness. 7200 at 8 bits does not follow the formula of the other
// depths (which would give 5775); both are wanted as they are.
float VcExposureSpread(unsigned bitsPerComponent);
