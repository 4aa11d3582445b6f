#include "picture/PicTransformRows.h"

#include "base/InstructionSet.h"

extern const TransformRows kTransformRowsAvx2;

static void Blend(uint8_t* over, const uint8_t* under, const uint8_t* alpha, int count)
{
    for (int x = 0; x < count; ++x, over += 3, under += 3)
        for (int c = 0; c < 3; ++c)
            over[c] = uint8_t(((255u - alpha[x]) * under[c] + unsigned(over[c]) * alpha[x]) / 255);
}

static const TransformRows kPlainRows = {0, 0, 0, nullptr, nullptr, nullptr, Blend};

const TransformRows& VcTransformRows()
{
    return LoopsInUse<TransformRows>({&kPlainRows, nullptr, &kTransformRowsAvx2, nullptr});
}
