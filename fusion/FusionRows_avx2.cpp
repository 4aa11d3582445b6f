// The tuned loops of fusion for processors with AVX2.

#include "fusion/FusionKernels.h"

namespace
{
#include "fusion/FusionRows.inl"
}

extern const FusionKernels kFusionKernelsAvx2;
const FusionKernels kFusionKernelsAvx2 = TunedKernels();
