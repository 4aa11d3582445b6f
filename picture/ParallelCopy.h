#pragma once

#include "picture/PicBuf.h"

// Copies the block of size pixels at the top left of src to the top left of dst, on all threads:
// one alone does not use all of the memory's speed. Same components and bits. Cannot fail.
void VcCopyPixels(SBxPicBuf* dst, const SBxPicBuf& src, const CBxSize<int>& size);
