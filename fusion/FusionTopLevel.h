#pragma once

#include "fusion/FusionKernels.h"

// VcWeighBand for the coarsest level, whose values are the Gaussian samples themselves, in floats
// (the job's coarse planes are not looked at). Its formulas differ from the bands' on purpose.
// Serial: the level is tiny.
void VcWeighTop(const FusionBandJob& job, unsigned channels, unsigned bitsPerComponent);
