#include "skin/IconPixels.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{
using Bytes = std::vector<uint8_t>;

constexpr IconKeyColour kElsewhere = {1, 2, 3}; // of no pixel

Bytes Disabled(const Bytes& source, int width, int height, const IconKeyColour& key = kElsewhere)
{
    Bytes result(source.size());
    DisableIcon(result.data(), source.data(), width, height, key);
    return result;
}
} // namespace

TEST(DisabledIcon, IsALowContrastGreyWithHalfTheAlphaBelowOneHundred)
{
    const uint8_t colours[][4] = {{255, 255, 255, 159}, {0, 0, 0, 50},   {0, 0, 255, 82},
                                  {0, 255, 0, 104},     {255, 0, 0, 71}, {128, 128, 128, 105}};
    for (const auto& [blue, green, red, grey] : colours)
        EXPECT_EQ(Disabled({blue, green, red, 255}, 1, 1), (Bytes{grey, grey, grey, 255}));
    for (const auto& [before, after] : {std::pair(1, 0), {99, 49}, {100, 100}, {255, 255}})
        EXPECT_EQ(Disabled({9, 9, 9, uint8_t(before)}, 1, 1)[3], after);
}

// The bytes are compared crosswise; a grey key would not show it.
TEST(DisabledIcon, KeepsTheKeyColourAndNothingLikeIt)
{
    const IconKeyColour key = {10, 20, 30};
    EXPECT_EQ(Disabled({10, 20, 30, 80}, 1, 1, key), (Bytes{10, 20, 30, 40}));
    EXPECT_EQ(Disabled({30, 20, 10, 255}, 1, 1, key), (Bytes{58, 58, 58, 255}));
}

TEST(FlattenedIcon, ShowsGreyWhereItIsSeenThrough)
{
    const Bytes source = {1, 2, 3, 255, 4, 5, 6, 127, 7, 8, 9, 126, //
                          1, 1, 1, 0,   2, 2, 2, 200, 3, 3, 3, 64};
    Bytes flat(2 * 12, 77); // rows of nine bytes, twelve apart
    FlattenIcon(flat.data(), 12, source.data(), 3, 2);
    EXPECT_EQ(flat, (Bytes{1,   2,   3,   4, 5, 6, 192, 192, 192, 77, 77, 77, //
                           192, 192, 192, 2, 2, 2, 192, 192, 192, 77, 77, 77}));
}
