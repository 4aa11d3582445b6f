#pragma once

#include <vector>

// Weights that give one Laplacian coefficient from the samples around it, `shift` levels finer.
// Reducing and expanding are linear, so a coefficient of parity p is
//   sum over (y, x) of (d(y) d(x) - u_py(y) u_px(x)) * sample(y, x),
// d being the reductions down to the level and u the ones one level further and back up, which
// differ for even and odd positions.
struct RemapWeights
{
    int half[2];                    // largest offset with a weight, for even and odd positions
    std::vector<float> table[2][2]; // [row parity][column parity], (2 * half[0] + 1) squared
};

RemapWeights RemapWeightsOf(int shift);
