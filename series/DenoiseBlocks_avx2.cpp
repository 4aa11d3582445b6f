// The denoising loop for processors with AVX2.

#include "series/DenoiseBlocks.h"

namespace
{
#include "series/DenoiseBlocks.inl"
}

const DenoiseBlockFn kDenoiseBlocksAvx2 = DenoiseBlocks;
