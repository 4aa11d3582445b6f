// The tuned loops of fusion for processors with AVX-512.

#include "fusion/FusionKernels.h"

namespace
{
#include "fusion/FusionRows.inl"
}

extern const FusionKernels kFusionKernelsAvx512;
const FusionKernels kFusionKernelsAvx512 = TunedKernels();
