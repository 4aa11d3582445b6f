#include "fusion/FusionFilter.h"

#include "base/ParallelRows.h"
#include "fusion/FusionKernels.h"

void FillGeneratingKernel(float kernel[5][5])
{
    for (int i = 0; i < 5; ++i)
        for (int j = 0; j < 5; ++j)
            kernel[i][j] = kGeneratingTaps[i] * kGeneratingTaps[j];
}

void VcReduceRows(float* dst, const float* src, int dstW, int dstH, int srcW, int srcH,
                  const float kernel[5][5], int firstRow, int endRow)
{
    const FusionPlane from = {src, srcW, srcH};
    VcFusionKernels().reduceRows[kFusionFloats](dst, dstW, dstH, &from, kernel, firstRow, endRow);
}

void VcExpandRows(float* dst, const float* src, int dstW, int dstH, int srcW, int srcH,
                  const float kernel[5][5], int firstRow, int endRow)
{
    const FusionKernels& kernels = VcFusionKernels();
    const FusionPlane from = {src, srcW, srcH};
    for (int row = firstRow; row < endRow; ++row)
        kernels.expandRow(dst + int64_t(row) * dstW, dstW, dstH, &from, kernel, row, 0, dstW);
}

void VcReduce(float* dst, const float* src, int dstW, int dstH, int srcW, int srcH,
              const float kernel[5][5])
{
    VcParallelRows(dstH, dstW,
                   [&](int first, int end)
                   { VcReduceRows(dst, src, dstW, dstH, srcW, srcH, kernel, first, end); });
}

void VcExpand(float* dst, const float* src, int dstW, int dstH, int srcW, int srcH,
              const float kernel[5][5])
{
    VcParallelRows(dstH, dstW,
                   [&](int first, int end)
                   { VcExpandRows(dst, src, dstW, dstH, srcW, srcH, kernel, first, end); });
}
