#pragma once

#include "base/RunControl.h"
#include "picture/PicBuf.h"

// Side of a picture rounded up so that `levels` halvings are exact: always at least one whole block
// of 2^levels more than needed, and at most 2 * 2^levels - 1 samples larger than the picture.
int PaddedSide(int side, int levels);

// Makes `padded` (initialised; released first) a copy of the picture with both sides padded and the
// edges replicated. Fails when memory is short; padded is empty then.
Outcome PadForPyramid(SBxPicBuf* padded, const SBxPicBuf& picture, int levels,
                      const RunControl& control = {});

// Fill what lies right of `width` and below `height` of a buffer with its last column and row.
void ReplicateEdges8(SBxPicBuf* buffer, int width, int height);
void ReplicateEdges16(SBxPicBuf* buffer, int width, int height);
