#pragma once

#include "alignment/Homography.h"

#include <vector>

// A pair of places that belong together, perhaps.
struct PlacePair
{
    CBxPoint<double> from, to; // pixel centres
    double trust;              // its weight before anything is known of the others
};

// What the map may do.
enum class MotionModel
{
    Shift,
    Similarity, // shift, turn and scale
    Affine,
    Projective,
};

struct RobustMap
{
    Homography map;
    std::vector<double> weight; // of each pair in the end; 0 = it follows another motion
    int agreeing = 0;           // pairs with a weight
    double residual = 0;        // weighted root mean square distance of those, pixels
};

// The map that most pairs agree on within about `tolerance` pixels. It starts from the best of
// `start` and of similarities through pairs of pairs (a consensus as Fischler and Bolles, 1981,
// have it, with a fixed sequence) and goes on by reweighted least squares with Tukey's biweight.
// Fewer pairs get a simpler model. Perspective is held back by a small ridge: without a reason
// there is none. The same bits on every machine. Throws std::bad_alloc.
RobustMap FitRobustly(const std::vector<PlacePair>& pairs, MotionModel model, CBxSize<int> frame,
                      const Homography& start, double tolerance);
