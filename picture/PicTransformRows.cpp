#include "picture/PicTransformRows.h"

#include <atomic>

extern const TransformRows kTransformRowsAvx2;

static void Blend(uint8_t* over, const uint8_t* under, const uint8_t* alpha, int count)
{
    for (int x = 0; x < count; ++x, over += 3, under += 3)
        for (int c = 0; c < 3; ++c)
            over[c] = uint8_t(((255u - alpha[x]) * under[c] + unsigned(over[c]) * alpha[x]) / 255);
}

static const TransformRows kPlainRows = {"plain", 0, 0, 0, nullptr, nullptr, nullptr, Blend};
static std::atomic<const TransformRows*> g_forcedRows{nullptr};

const TransformRows* VcTransformRowsOf(TransformVariant variant)
{
    if (variant == TransformVariant::Plain)
        return &kPlainRows;
    return __builtin_cpu_supports("avx2") ? &kTransformRowsAvx2 : nullptr;
}

static const TransformRows* BestRows()
{
    const TransformRows* tuned = VcTransformRowsOf(TransformVariant::Avx2);
    return tuned ? tuned : &kPlainRows;
}

const TransformRows& VcTransformRows()
{
    static const TransformRows* const best = BestRows();
    const TransformRows* forced = g_forcedRows.load(std::memory_order_relaxed);
    return forced ? *forced : *best;
}

void VcForceTransformRows(const TransformRows* rows)
{
    g_forcedRows.store(rows, std::memory_order_relaxed);
}
