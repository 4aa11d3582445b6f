// The tuned loops of fusion for processors with SSE2.

#include "fusion/FusionKernels.h"

namespace
{
#include "fusion/FusionRows.inl"
}

extern const FusionKernels kFusionKernelsSse2;
const FusionKernels kFusionKernelsSse2 = TunedKernels();
