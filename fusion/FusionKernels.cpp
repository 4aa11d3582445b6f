#include "fusion/FusionKernels.h"

#include <atomic>
#include <initializer_list>

extern const FusionKernels kFusionKernelsPlain, kFusionKernelsSse2, kFusionKernelsAvx2,
    kFusionKernelsAvx512;

static std::atomic<const FusionKernels*> g_forcedKernels{nullptr};

const FusionKernels* VcFusionKernelsOf(FusionVariant variant)
{
    switch (variant)
    {
    case FusionVariant::Plain: return &kFusionKernelsPlain;
    case FusionVariant::Sse2: return &kFusionKernelsSse2;
    case FusionVariant::Avx2: return __builtin_cpu_supports("avx2") ? &kFusionKernelsAvx2 : nullptr;
    case FusionVariant::Avx512:
        return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
                       __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl")
                   ? &kFusionKernelsAvx512
                   : nullptr;
    }
    return nullptr;
}

static const FusionKernels* BestKernels()
{
    for (FusionVariant variant : {FusionVariant::Avx512, FusionVariant::Avx2})
        if (const FusionKernels* kernels = VcFusionKernelsOf(variant))
            return kernels;
    return &kFusionKernelsSse2;
}

const FusionKernels& VcFusionKernels()
{
    static const FusionKernels* const best = BestKernels();
    const FusionKernels* forced = g_forcedKernels.load(std::memory_order_relaxed);
    return forced ? *forced : *best;
}

void VcForceFusionKernels(const FusionKernels* kernels)
{
    g_forcedKernels.store(kernels, std::memory_order_relaxed);
}
