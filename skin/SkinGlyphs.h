#pragma once

#include <vector>

// Small arrows of lines one pixel wide, as lists of pixels to draw. Coordinates
// are relative to the glyph's upper left corner.
struct GlyphLine
{
    int x, y, length;
};

struct Glyph
{
    bool vertical; // direction of the lines
    int width, height;
    std::vector<GlyphLine> lines;
};

enum class ArrowTo
{
    Up,
    Down,
    Left,
    Right
};

// Up and down: horizontal lines, each two pixels shorter than the last, from
// `base` pixels (odd) to one. Left and right: four vertical lines of 7, 5, 3
// and 1 pixels.
Glyph ArrowGlyph(ArrowTo to, int base = 7);

// How much of a pixel a disc covers, from 0 to 1; the pixel's upper left corner
// is given relative to the disc's middle.
float DiscCoverage(float x, float y, float radius);

// A scroll bar of that length with a button at either end: what scrolls from
// first to last, a page of it in sight from `position` on.
struct ScrollRange
{
    int first, last, page, position;
};

// Where the thumb starts and ends; both zero when there is nothing to scroll,
// or no room.
struct ThumbPlace
{
    int start, end;
};
ThumbPlace PlaceThumb(const ScrollRange& range, int length, int button);
