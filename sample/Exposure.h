#pragma once

#include "picture/Picture.h"
#include "sample/Scene.h"

// Takes one photograph, as 8-bit sRGB: `stops` is the exposure relative to the middle of the
// series. Light beyond white is cut off, a little noise as of a sensor is added (the same in
// every run, different in every exposure). Empty when memory is short.
Picture ExposeSample(const SampleRadiance& scene, int stops);
