#pragma once

#include "base/Outcome.h"
#include "picture/Picture.h"

// Makes the cache an 8-bit copy of the picture with that many components (1 or 3), by the rules of
// ConvertBpcComp. Fails when there is no picture or no memory; the cache is empty then.
Outcome RebuildViewCache(Picture* cache, const SBxPicBuf* picture, int components);
