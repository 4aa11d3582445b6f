#pragma once

#include "base/Outcome.h"
#include "picture/PicBuf.h"

// Standard deviation of the noise, in steps of an 8-bit one-component copy of the picture, whatever
// its depth: noise[0] from single pixels, noise[1] from means of 2 x 2 pixels, doubled. They are
// equal for white noise; noise of a camera is coarser, and its noise[1] larger. Fails when memory
// is short; the numbers are as they were then.
Outcome EstimateNoise(double noise[2], const SBxPicBuf& picture);
