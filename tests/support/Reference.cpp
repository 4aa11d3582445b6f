#include "tests/support/Reference.h"

#include "tests/support/TestPictures.h"

#include <algorithm>
#include <cmath>

using Plane = ReferencePlane;

static const double kTap[5] = {0.05, 0.25, 0.4, 0.25, 0.05};

Plane Halve(const Plane& src)
{
    Plane dst(src.w >> 1, src.h >> 1);
    if (dst.Small())
        return dst;
    for (int y = 0; y < dst.h; ++y)
        for (int x = 0; x < dst.w; ++x)
        {
            const int top = std::min(y < 2 ? 0 : 2 * y - 2, src.h - 5);
            const int left = std::min(x < 2 ? 0 : 2 * x - 2, src.w - 5);
            for (int a = 0; a < 5; ++a)
                for (int b = 0; b < 5; ++b)
                    dst.At(x, y) += kTap[a] * kTap[b] * src.At(left + b, top + a);
        }
    return dst;
}

Plane Enlarge(const Plane& src, int w, int h)
{
    Plane dst(w, h);
    if (dst.Small())
        return dst;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
        {
            const int top = std::min(y < 3 ? 0 : y - 2, h - 5);
            const int left = std::min(x < 3 ? 0 : x - 2, w - 5);
            for (int a = 0; a < 5; ++a)
                for (int b = 0; b < 5; ++b)
                {
                    const int r = top + a, c = left + b;
                    if (r % 2 == 0 && c % 2 == 0 && r < 2 * src.h && c < 2 * src.w)
                        dst.At(x, y) += 4.0 * kTap[a] * kTap[b] * src.At(c / 2, r / 2);
                }
        }
    return dst;
}

Plane ComponentOf(const SBxPicBuf& picture, int component)
{
    Plane plane(picture.width, picture.height);
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x)
            plane.At(x, y) = SampleOf(picture, x, y, component);
    return plane;
}

namespace
{

double LaplacianAt(const std::vector<Plane>& planes, int x, int y)
{
    double lap = 0.0;
    for (const Plane& p : planes)
    {
        const int cx = std::clamp(x, 1, p.w - 2), cy = std::clamp(y, 1, p.h - 2);
        lap += p.At(cx, cy - 1) + p.At(cx - 1, cy) - 4.0 * p.At(cx, cy) + p.At(cx + 1, cy) +
               p.At(cx, cy + 1);
    }
    return lap;
}

struct Weighing
{
    int bits;
    double mid;
    bool top; // the coarsest level has formulas of its own
};

double WeightAt(const std::vector<Plane>& g, int x, int y, const Weighing& how)
{
    const bool deep = how.bits == 16;
    const double spread = deep ? 16384.0 * 16384.0 * 1.41 : 7200.0;
    const double lap = std::fabs(LaplacianAt(g, x, y));
    const double tiny = how.top ? 0.0 : 1e-5;
    if (g.size() == 1)
    {
        const double d = g[0].At(x, y) - how.mid;
        const double e = std::exp(-d * d / (how.top && deep ? 10.0 * spread : spread)) + tiny;
        return std::sqrt(lap + tiny) * e * e + 1e-5;
    }
    const double m = (g[0].At(x, y) + g[1].At(x, y) + g[2].At(x, y)) / 3.0;
    double variance = 0.0;
    for (const Plane& p : g)
        variance += (m - p.At(x, y)) * (m - p.At(x, y)) / 3.0;
    const double d2 = (m - how.mid) * (m - how.mid);
    if (how.top && deep)
    {
        const double e = std::exp(-d2 / (10.0 * spread));
        return std::sqrt(lap / 3.0) * std::sqrt(variance) * e * e + 1e-5;
    }
    const double e = std::pow(std::exp(-d2 / spread) + tiny, 0.16);
    const double c = std::sqrt(std::pow(lap / 3.0 + tiny, 0.16));
    const double s = std::pow(std::sqrt(variance) + tiny, 0.16);
    return c * s * e * e + 1e-5;
}

int LevelsOf(int w, int h)
{
    int levels = 0;
    for (int side = std::min(w, h); side >= 6; side /= 2)
        ++levels;
    return std::min(levels, 7);
}

// Weight sums and weighted sums of one group of channels that share their
// weights.
struct Sums
{
    std::vector<Plane> weight;             // per level
    std::vector<std::vector<Plane>> value; // per channel, per level
};

void Add(Sums* sums, std::vector<Plane> gauss, const Weighing& base, int levels)
{
    for (int k = 0; k <= levels; ++k)
    {
        const bool top = k == levels;
        std::vector<Plane> next, band = gauss;
        for (size_t c = 0; c < gauss.size() && !top; ++c)
        {
            next.push_back(Halve(gauss[c]));
            const Plane large = Enlarge(next[c], gauss[c].w, gauss[c].h);
            for (size_t i = 0; i < large.v.size(); ++i)
                band[c].v[i] -= large.v[i];
        }
        const Plane& shape = gauss[0];
        for (int y = 0; y < shape.h && !shape.Small(); ++y)
            for (int x = 0; x < shape.w; ++x)
            {
                const double w = WeightAt(gauss, x, y, {base.bits, base.mid, top});
                sums->weight[size_t(k)].At(x, y) += w;
                for (size_t c = 0; c < gauss.size(); ++c)
                    sums->value[c][size_t(k)].At(x, y) += w * band[c].At(x, y);
            }
        gauss = std::move(next);
    }
}

std::vector<double> Collapse(const Sums& sums, size_t channel, int levels)
{
    Plane result;
    for (int k = levels; k >= 0; --k)
    {
        const Plane& weight = sums.weight[size_t(k)];
        const Plane& value = sums.value[channel][size_t(k)];
        Plane level = k == levels ? Plane(weight.w, weight.h) : Enlarge(result, weight.w, weight.h);
        for (size_t i = 0; i < level.v.size() && !level.Small(); ++i)
            if (std::fabs(weight.v[i]) > 1e-10)
                level.v[i] += value.v[i] / weight.v[i];
        result = std::move(level);
    }
    return result.v;
}

} // namespace

ReferenceFusion FuseByFormula(const std::vector<const SBxPicBuf*>& sources, double exposureMid)
{
    const SBxPicBuf& like = *sources[0];
    const int levels = LevelsOf(like.width, like.height);
    const Weighing how = {like.bitsPerComponent,
                          exposureMid * (like.bitsPerComponent == 16 ? 256.0 : 1.0), false};
    Sums sums;
    sums.value.resize(size_t(like.components));
    for (int k = 0; k <= levels; ++k)
    {
        sums.weight.emplace_back(like.width >> k, like.height >> k);
        for (auto& channel : sums.value)
            channel.emplace_back(like.width >> k, like.height >> k);
    }
    for (const SBxPicBuf* source : sources)
    {
        std::vector<Plane> gauss;
        for (int c = 0; c < like.components; ++c)
            gauss.push_back(ComponentOf(*source, c));
        Add(&sums, std::move(gauss), how, levels);
    }
    ReferenceFusion fused;
    for (int c = 0; c < like.components; ++c)
        fused.channels.push_back(Collapse(sums, size_t(c), levels));
    return fused;
}
