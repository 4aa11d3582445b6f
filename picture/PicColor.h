#pragma once

#include "picture/PicBuf.h"

// The two colour conversions of CBxPicBufAPI, which tells what they do.

bool RgbToYuv(SBxPicBuf* dst, const SBxPicBuf& src);
bool YuvToRgb(SBxPicBuf* dst, const SBxPicBuf& src);
