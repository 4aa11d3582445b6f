#pragma once

#include "alignment/LumaPyramid.h"

#include "base/Geometry.h"

// The whole-pixel shift of a small plane against another one of its size: where a pixel (x, y) of
// `stays` is found at (x + shift.x, y + shift.y) of `moving`. At most `reach` pixels along each
// axis, by the correlation of the band-passed logarithms of what is clipped in neither; of two that
// are equally good the shorter. Throws std::bad_alloc.
CBxPoint<int> WholeShift(const LumaPlane& stays, const LumaPlane& moving, int reach);
