#include "skin/SkinGlyphs.h"

#include <gtest/gtest.h>

TEST(Glyphs, ShrinkByTwoPerLine)
{
    for (const auto& [to, lengths] : {std::pair(ArrowTo::Down, std::vector<int>{7, 5, 3, 1}),
                                      {ArrowTo::Up, {1, 3, 5, 7}},
                                      {ArrowTo::Right, {7, 5, 3, 1}},
                                      {ArrowTo::Left, {1, 3, 5, 7}}})
    {
        const Glyph glyph = ArrowGlyph(to);
        std::vector<int> drawn;
        for (const GlyphLine& line : glyph.lines)
        {
            drawn.push_back(line.length);
            const int across = glyph.vertical ? line.y : line.x;
            EXPECT_EQ(2 * across + line.length, 7) << "centred";
        }
        EXPECT_EQ(drawn, lengths);
    }
}

TEST(ScrollThumb, SitsWhereThePageIs)
{
    const struct
    {
        ScrollRange range;
        int start, end;
    } rows[] = {
        {{0, 99, 10, 0}, 16, 28},    // shorter than a thumb may be
        {{0, 99, 10, 90}, 104, 116}, // the last page
        {{0, 99, 10, 500}, 104, 116}, {{-50, 49, 50, -25}, 41, 91},
        {{0, 9, 10, 0}, 0, 0}, // all in sight
        {{0, 100, 0, 50}, 60, 72},
    };
    for (const auto& row : rows)
    {
        const ThumbPlace thumb = PlaceThumb(row.range, 132, 16);
        EXPECT_EQ(thumb.start, row.start) << &row - rows;
        EXPECT_EQ(thumb.end, row.end) << &row - rows;
    }
}
