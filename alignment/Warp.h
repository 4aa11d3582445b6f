#pragma once

#include "alignment/Homography.h"
#include "picture/PicBuf.h"

#include <vector>

// Resampling a frame once, from its decoded samples.

// Fills dst, which has the components and bits of src (1 or 3, 8 or 16), with src seen through the
// map: the pixel centre (x, y) of dst takes what lies at MapPoint(map, x + origin.x, y + origin.y)
// of src. The filter is a cubic over four by four pixels, a little sharper than usual, in 256ths of
// a pixel: the same bits on every machine. Beyond the border src is mirrored. Rows are spread over
// the task pool; throws std::bad_alloc.
void WarpPicture(SBxPicBuf* dst, const SBxPicBuf& src, const Homography& map,
                 const CBxPoint<int>& origin);

// The largest rectangle of the aspect ratio of `frame` or near it that lies inside of all frames:
// every pixel of it, and the filter's surroundings, come from within each source. Grown from the
// middle; empty when there is none.
CBxRect<int> CommonRectangle(const std::vector<Homography>& maps, CBxSize<int> frame);
