#pragma once

#include "tonemap/ToneMapPlane.h"

// Tone mapping by a local Laplacian filter (Paris, Hasinoff and Kautz, 2011): lifts or damps detail
// and compresses or expands edges without halos. Works on luminance, and on both chroma planes on
// request.

constexpr int kToneMapLevels = 5; // of the tool, for preview and final run alike

// The four sliders, 1..50 each, as parameters of the filter.
struct ToneMapParams
{
    double p1; // contrast: 51/50 takes the whole range for detail
    double p2; // noise amplitude
    double p3; // exponent of detail: below 0.5 or so detail grows
    double p4; // half the gain of edges
};
ToneMapParams ToneMapParamsOf(int contrast, int noiseAmplitude, int details, int equalization);

enum ToneMapResult
{
    kToneMapDone = 0,
    kToneMapCancelled,
    kToneMapOutOfMemory,
};

// Filters `in` (1 or 3 components, 8 or 16 bits, any size) into `out` of the same geometry; out may
// be in. Progress advances by 3 per level and plane (15 a plane with 5 levels). out is written only
// when the run is done.
int ToneMapPicture(SBxPicBuf* out, const SBxPicBuf& in, int levels, double p1, double p2, double p3,
                   double p4, bool useColors, const RunControl& control = {},
                   ToneMapMethod method = ToneMapMethod::Direct);
