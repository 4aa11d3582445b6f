#pragma once

#include "base/RunControl.h"
#include "picture/PicBuf.h"

// How the coefficients are found. Both give the same picture; the phases follow the definition
// step by step and take minutes for a photograph.
enum class ToneMapMethod
{
    Direct,
    Phases,
};

// The filter on one plane: one component of 32-bit floats on the 0..255 scale, both sides multiples
// of 2^levels. True when it was cancelled or memory was short; out is worthless then.
[[nodiscard]] bool ToneMapPlane(SBxPicBuf* out, const SBxPicBuf& in, int levels, double p1,
                                double p2, double p3, double p4, const RunControl& control = {},
                                ToneMapMethod method = ToneMapMethod::Direct);
