#pragma once

#include "tonemap/ToneMapPlane.h"

// Tone mapping by a local Laplacian filter (Paris, Hasinoff and Kautz, 2011): lifts or damps detail
// and compresses or expands edges without halos. Works on luminance, and on both chroma planes on
// request.

constexpr int kToneMapLevels = 5; // of the tool, for preview and final run alike

// Filters `in` (1 or 3 components, 8 or 16 bits, any size) into `out` of the same geometry; out may
// be in. Progress advances by 3 per level and plane (15 a plane with 5 levels). out is written only
// when the run is done.
Outcome ToneMapPicture(SBxPicBuf* out, const SBxPicBuf& in, int levels, const ToneMapParams& params,
                       const RunControl& control = {},
                       ToneMapMethod method = ToneMapMethod::Direct);
