#include "skin/SkinGlyphs.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

constexpr int kSideBase = 7; // of arrows to the left and right, whatever base is asked for

Glyph ArrowGlyph(ArrowTo to, int base)
{
    // Up and left are down and right with their lines in the opposite order.
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

constexpr int kShortestThumb = 12; // pixels that can still be hit with the mouse

// The thumb is to its lane, the bar without the buttons, as the page is to
// everything; and its place in what is left of the lane is as the position
// among all that can be scrolled to.
ThumbPlace PlaceThumb(const ScrollRange& range, int length, int button)
{
    const int lane = length - 2 * button;
    const int steps = range.last - range.first + 1;
    const int page = std::max(range.page, 1);
    if (steps <= page || lane < kShortestThumb)
        return {0, 0};
    const int thumb = std::max(kShortestThumb, int(int64_t(lane) * range.page / steps));
    const int at = std::clamp(range.position - range.first, 0, steps - page);
    const int start = button + int(int64_t(lane - thumb) * at / (steps - page));
    return {start, start + thumb};
}
