#include "fusion/FusionFilter.h"

#include "fusion/FusionKernels.h"
#include "fusion/FusionThreads.h"

void VcReduce(float* dst, const float* src, int dstW, int dstH, int srcW, int srcH,
              const float kernel[5][5])
{
    const FusionKernels& kernels = VcFusionKernels();
    VcParallelRows(dstH, dstW,
                   [&](int first, int end)
                   { kernels.reduceRows(dst, src, dstW, dstH, srcW, srcH, kernel, first, end); });
}

void VcExpand(float* dst, const float* src, int dstW, int dstH, int srcW, int srcH,
              const float kernel[5][5])
{
    const FusionKernels& kernels = VcFusionKernels();
    VcParallelRows(dstH, dstW,
                   [&](int first, int end)
                   { kernels.expandRows(dst, src, dstW, dstH, srcW, srcH, kernel, first, end); });
}
