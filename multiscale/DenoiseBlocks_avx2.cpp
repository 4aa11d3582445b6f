// The denoising loop for processors with AVX2.

#include "multiscale/DenoiseBlocks.h"

namespace
{
#include "multiscale/DenoiseBlocks.inl"
}

const DenoiseBlockFn kDenoiseBlocksAvx2 = DenoiseBlocks;
