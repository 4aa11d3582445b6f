#pragma once

#include "picture/PicBuf.h"

// Stretches [lo, hi) of every component to the full range: a sample at or above hi becomes the
// maximum, one below lo becomes 0, the others trunc((v - lo) / (hi - lo) * max) in double. hi is
// looked at first, so hi = lo sends everything from lo on to the maximum. Same geometry and depth
// in both, 8 bits or 16; the maximum is that of the picture's bitsPerComponent. dst may be src.
// Always false.
bool VcStretchRange8(SBxPicBuf* dst, const SBxPicBuf& src, unsigned lo, unsigned hi);
bool VcStretchRange16(SBxPicBuf* dst, const SBxPicBuf& src, unsigned lo, unsigned hi);
