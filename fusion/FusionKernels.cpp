#include "fusion/FusionKernels.h"

#include "base/InstructionSet.h"

extern const FusionKernels kFusionKernelsPlain, kFusionKernelsSse2, kFusionKernelsAvx2,
    kFusionKernelsAvx512;

const FusionKernels& VcFusionKernels()
{
    return LoopsInUse<FusionKernels>(
        {&kFusionKernelsPlain, &kFusionKernelsSse2, &kFusionKernelsAvx2, &kFusionKernelsAvx512});
}
