#pragma once

#include "fusion/FusionKernels.h"

#include <gtest/gtest.h>

// Runs check once with every set of loops that this processor can run.
template <typename Check>
void ForEachVariant(Check check)
{
    for (int i = 0; i < kFusionVariants; ++i)
    {
        const FusionKernels* kernels = VcFusionKernelsOf(FusionVariant(i));
        if (!kernels)
            continue;
        SCOPED_TRACE(kernels->name);
        VcForceFusionKernels(kernels);
        check();
        VcForceFusionKernels(nullptr);
    }
}
