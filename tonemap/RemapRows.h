#pragma once

// The hot loop of local Laplacian filtering, one per instruction set. Seen by files with flags of
// their own: no inline functions and no standard headers here.

constexpr int kRemapMaxSize = 93; // side of the largest neighbourhood
constexpr int kRemapMaxPhases = 16;

// Everything about one level. The samples of the fine level are kept by phase: with columns
// x = phases * q + r, all samples of one r lie side by side, so that the neighbourhoods of every
// second coefficient are read in order.
struct RemapRowJob
{
    const float* phaseRows; // sample (column 0, row 0) of phase 0
    long long rowStep;      // floats from a fine row to the next
    int phaseStep;          // floats from a phase to the next within a row
    int phases;             // 2 << shift
    int shift;

    const float* gauss; // of the level: the values to remap about
    float* laplace;     // of the level: what to write
    int width;          // of the level
    int columns;        // how many coefficients of a row are remapped

    float sigma, noise, curveStep, beta;
    const float* curve; // sigma times the power curve, 1024 entries

    // Product weights by parity of the coefficient's row and column: [row][column][y][x], and half
    // the side that carries weights for each parity.
    const float* weights[2][2];
    int half[2];
};

using RemapRowFn = void (*)(const RemapRowJob* job, int row);

extern const RemapRowFn kRemapRowSse2, kRemapRowAvx2, kRemapRowAvx512;
