#pragma once

#include "picture/PicBuf.h"

// Makes the cache an 8-bit copy of the picture with that many components (1 or 3), by the rules of
// ConvertBpcComp. True when there is no picture or no memory; the cache is empty then.
[[nodiscard]] bool RebuildViewCache(SBxPicBuf* cache, const SBxPicBuf* picture, int components);
