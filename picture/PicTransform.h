#pragma once

#include "picture/PicBuf.h"
#include "picture/PicMap.h"

// The three ways of CBxPicBufAPI to resample, which tells what they do.

void TransformNearest(SBxPicBuf* dst, const SBxPicBuf& src, const CBxPicMap& map);
void TransformBilinear(SBxPicBuf* dst, const SBxPicBuf& src, const CBxPicMap& map);
void TransformBicubic(SBxPicBuf* dst, const SBxPicBuf& src, const CBxPicMap& map);
