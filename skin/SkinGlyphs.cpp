#include "skin/SkinGlyphs.h"

#include <algorithm>
#include <cmath>

constexpr int kSideBase = 7;

Glyph ArrowGlyph(ArrowTo to, int base)
{
    const bool vertical = to == ArrowTo::Left || to == ArrowTo::Right;
    const bool pointLast = to == ArrowTo::Down || to == ArrowTo::Right;
    const int longest = vertical ? kSideBase : base;
    const int count = (longest + 1) / 2;
    Glyph glyph = {vertical, vertical ? count : longest, vertical ? longest : count, {}};
    for (int i = 0; i < count; ++i)
    {
        const int inset = pointLast ? i : count - 1 - i;
        const int length = longest - 2 * inset;
        if (vertical)
            glyph.lines.push_back({i, inset, length});
        else
            glyph.lines.push_back({inset, i, length});
    }
    return glyph;
}

// The edge is taken for straight inside of a pixel.
float DiscCoverage(float x, float y, float radius)
{
    const float distance = std::hypot(x + 0.5f, y + 0.5f);
    return std::clamp(radius - distance + 0.5f, 0.0f, 1.0f);
}
