// The denoising loop for processors with SSE2.

#include "series/DenoiseBlocks.h"

namespace
{
#include "series/DenoiseBlocks.inl"
}

const DenoiseBlockFn kDenoiseBlocksSse2 = DenoiseBlocks;
