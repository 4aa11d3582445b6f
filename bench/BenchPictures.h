#pragma once

#include "picture/Picture.h"

// Pictures to measure with, and what their results are compared by.

// Gradients with grain, 2^ev times the light; photographs compress and weigh much alike.
Picture BenchScene(int width, int height, int components, int bits, int ev);

// A picture of three components whose samples tell where they are, so that any filter at any scale
// can be predicted.
Picture BenchRamp(int width, int height, int bits);

// What the middle component of a ramp has at a point inside of it, for 8 bits.
double BenchRampAt(double x, double y, int width, int height);

int LargestDifference(const SBxPicBuf& a, const SBxPicBuf& b);

// Mean of all samples, of floats as well. Filters keep it, so a wrong one shows.
double MeanOf(const SBxPicBuf& picture);
