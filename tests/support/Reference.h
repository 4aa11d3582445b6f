#pragma once

#include "picture/PicBuf.h"

#include <vector>

// Exposure fusion straight from its formulas, in double throughout and with the
// C library's exp and pow; shares no code with the engine. Slow.
struct ReferenceFusion
{
    std::vector<std::vector<double>> channels; // unclamped, packed rows
};

ReferenceFusion FuseByFormula(const std::vector<const SBxPicBuf*>& sources, double exposureMid);
