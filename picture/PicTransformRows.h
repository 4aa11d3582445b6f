#pragma once

#include <cstdint>

// The inner loops of the view for 8-bit samples, one set per instruction set. Each set passes
// the same tests and gives the same bits: all arithmetic is in integers.
//
// This header is seen by a file with instruction-set flags of its own, so it must stay free of
// inline functions and of standard headers that bring some.

// A tap says which samples along one axis a position takes and with what weights.

constexpr int kBilinearBits = 11; // two weights and an 8-bit sample stay below 2^31

struct BilinearTap
{
    int low, high;    // high is low + 1 except at the picture's edges
    uint32_t weights; // that of low in the low half, that of high in the high half
};

// Along a row the weights are applied first, and what they give is kept with 6 bits behind the
// point: a Catmull-Rom sum can leave the range of its samples by an eighth on either side, which
// then still fits 16 bits.
constexpr int kBicubicBits = 13;
constexpr int kBicubicRowShift = kBicubicBits - 6;
constexpr int kBicubicShift = kBicubicBits + 6;

struct BicubicTap
{
    int first;         // sample of the first weight; may lie outside of the picture
    int16_t weight[4]; // add up to 1 << kBicubicBits
};

// Tuned loops for the inner part of a row: every tap must have `reach` samples of its row from low
// (or first) on, since whole vectors are read. count is at least kLeastTunedPixels. A null pointer
// means that there is only the plain loop, which also does what lies outside of the inner part.
struct TransformRows
{
    int bilinearReach;
    int bicubicReach;
    int bilinearGreyReach;

    void (*bilinear)(uint8_t* out, const uint8_t* upper, const uint8_t* lower,
                     const BilinearTap* columns, int count, uint32_t rowWeights);
    void (*bicubic)(uint8_t* out, const uint8_t* const rows[4], const BicubicTap* columns,
                    int count, const int16_t rowWeight[4]);
    void (*bilinearGrey)(uint8_t* out, const uint8_t* upper, const uint8_t* lower,
                         const BilinearTap* columns, int count, uint32_t rowWeights);

    // Lays three samples a pixel over those of `under`, as opaque as alpha says: see
    // BlendOverChecker. Never null; takes any count.
    void (*blend)(uint8_t* over, const uint8_t* under, const uint8_t* alpha, int count);
};
constexpr int kLeastTunedPixels = 8;

// Those of the instruction set in use.
const TransformRows& VcTransformRows();
