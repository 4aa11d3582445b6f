// The denoising loop for processors with SSE2.

#include "multiscale/DenoiseBlocks.h"

namespace
{
#include "multiscale/DenoiseBlocks.inl"
}

const DenoiseBlockFn kDenoiseBlocksSse2 = DenoiseBlocks;
