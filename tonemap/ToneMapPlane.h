#pragma once

#include "base/RunControl.h"
#include "picture/PicBuf.h"
#include "tonemap/ToneMapParams.h"

// How the coefficients are found. Both give the same picture; the phases follow the definition
// step by step and take minutes for a photograph.
enum class ToneMapMethod
{
    Direct,
    Phases,
};

// The filter on one plane: one component of 32-bit floats on the 0..255 scale, both sides multiples
// of 2^levels. After anything but Done out is worthless.
Outcome ToneMapPlane(SBxPicBuf* out, const SBxPicBuf& in, int levels, const ToneMapParams& params,
                     const RunControl& control = {}, ToneMapMethod method = ToneMapMethod::Direct);
