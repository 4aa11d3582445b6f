#pragma once

#include "picture/PicBuf.h"

#include <cstddef>
#include <vector>

// A plane of doubles, and the pair of filters that fusion and levels of detail share, as they are
// defined: at a border the window moves inside. Planes under 5 pixels stay black.
struct ReferencePlane
{
    int w = 0, h = 0;
    std::vector<double> v;

    ReferencePlane() = default;
    ReferencePlane(int width, int height) : w(width), h(height), v(size_t(width) * size_t(height))
    {
    }
    double& At(int x, int y) { return v[size_t(y) * size_t(w) + size_t(x)]; }
    double At(int x, int y) const { return v[size_t(y) * size_t(w) + size_t(x)]; }
    bool Small() const { return w < 5 || h < 5; }
};

ReferencePlane Halve(const ReferencePlane& src);
ReferencePlane Enlarge(const ReferencePlane& src, int w, int h);
ReferencePlane ComponentOf(const SBxPicBuf& picture, int component);

// Exposure fusion straight from its formulas, in double throughout and with the
// C library's exp and pow; shares no code with the engine. Slow.
struct ReferenceFusion
{
    std::vector<std::vector<double>> channels; // unclamped, packed rows
};

ReferenceFusion FuseByFormula(const std::vector<const SBxPicBuf*>& sources, double exposureMid);
