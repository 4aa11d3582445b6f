#include "picture/Picture.h"

#include "tests/support/TestPictures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

TEST(PictureRecord, HasPackedRowsAndRefusesWhatItCannotDescribe)
{
    TestPicture odd(7, 3, 3, 16);
    EXPECT_EQ(odd->stride, 42);
    EXPECT_EQ(odd->size, 126);
    odd.Set(0, 0, 0, 12345);
    CBxPicBufAPI::ReinitHeap(odd.Record(), 7, 3, 3, 16);
    EXPECT_EQ(odd.At(0, 0), 12345) << "the same geometry again keeps the block";
    const int impossible[][4] = {{40000, 20000, 3, 8},           {0, 5, 3, 8},  {5, -1, 1, 8},
                                 {65536, 65536, 1, 8},           {5, 5, 3, 12}, {5, 5, 0, 8},
                                 {2000000000, 2000000000, 3, 32}};
    for (const auto& [width, height, components, bits] : impossible)
    {
        TestPicture picture(4, 4, 1, 8);
        CBxPicBufAPI::ReinitHeap(picture.Record(), width, height, components, bits);
        EXPECT_EQ(picture->data, nullptr) << width << "x" << height;
        EXPECT_EQ(picture->size, 0);
        EXPECT_EQ(picture->width, 0);
    }
    CBxPicBufAPI::DoneHeap(odd.Record());
    CBxPicBufAPI::DoneHeap(odd.Record());
    EXPECT_EQ(odd->data, nullptr);
}

TEST(PictureOwner, HandsItsBlockOnAndFreesItOnce)
{
    Picture first(4, 3, 1, 8);
    uint8_t* const block = first->data;
    ASSERT_NE(block, nullptr);
    const Picture& emptied = first;
    Picture second = std::move(first);
    EXPECT_TRUE(emptied.Empty()) << "or both would free it";
    EXPECT_EQ(second->data, block);
    Picture& same = second;
    second = std::move(same);
    EXPECT_EQ(second->data, block);
    Picture third(200, 100, 3, 16); // its block goes, which the leak checker sees
    third = std::move(second);
    EXPECT_EQ(third->width, 4);
    const Picture back = Picture::Owning(third.Release());
    EXPECT_TRUE(third.Empty());
    EXPECT_EQ(back->data, block);
    EXPECT_TRUE(Picture(70000, 70000, 3, 8).Empty());
}

TEST(PictureCopies, TouchNothingOutsideTheirRectangle)
{
    const TestPicture flat = FlatPicture(8, 8, 8, {1, 2, 3});
    const auto expectWithin = [](const TestPicture& picture, const CBxRect<int>& r, int first)
    {
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x)
                for (int c = 0; c < 3; ++c)
                {
                    const bool inside = x >= r.left && x < r.right && y >= r.top && y < r.bottom;
                    ASSERT_EQ(picture.At(x, y, c), inside ? first + c : 7) << x << ", " << y;
                }
    };
    for (const CBxRect<int>& r : {CBxRect<int>{2, 2, 6, 3}, {0, 7, 8, 8}, {0, 0, 8, 8}})
    {
        TestPicture copied = FlatPicture(8, 8, 8, {7, 7, 7}),
                    moved = FlatPicture(8, 8, 8, {7, 7, 7});
        CBxPicBufAPI::Copy(copied.Record(), flat, r);
        expectWithin(copied, r, 1);
        CBxPicBufAPI::CopyRect(moved.Record(), flat, {r.left, r.top}, {0, 0},
                               {r.right - r.left, r.bottom - r.top});
        expectWithin(moved, r, 1);
        CBxPicBufAPI::SetConst(moved.Record(), r, 7);
        ExpectSamePicture(moved, FlatPicture(8, 8, 8, {7, 7, 7}));
        CBxPicBufAPI::Copy(moved.Record(), flat);
        ExpectSamePicture(moved, flat);
    }
}

TEST(PictureCopies, WorkOnAWrapperWithLongerRows)
{
    uint8_t memory[4 * 12];
    std::memset(memory, 5, sizeof memory);
    SBxPicBuf wrapper = {memory, sizeof memory, 12, 3, 4, 3, 8}; // 9 of 12 bytes used
    CBxPicBufAPI::Copy(&wrapper, FlatPicture(3, 4, 8, {10, 20, 30}));
    for (int y = 0; y < 4; ++y)
    {
        EXPECT_EQ(memory[12 * y + 8], 30);
        EXPECT_EQ(memory[12 * y + 9], 5) << "beyond the picture's row";
    }
    TestPicture deep(3, 2, 1, 16);
    CBxPicBufAPI::SetConst(deep.Record(), 255); // to the byte as a number
    EXPECT_EQ(deep.At(2, 1), 255);
}

TEST(Components, ComeBackWhereTheyWereTaken)
{
    for (const int bits : {8, 16, 32})
    {
        const TestPicture source = PictureOf(
            13, 7, 3, bits, [](int x, int y, int c) { return (x * 31 + y * 17 + c * 71) % 256; });
        TestPicture copy(13, 7, 3, bits), plane(13, 7, 1, bits);
        for (unsigned c = 0; c < 3; ++c)
        {
            EXPECT_TRUE(CBxPicBufAPI::ExtractComponent(plane.Record(), c, source));
            EXPECT_EQ(plane.At(12, 6), source.At(12, 6, int(c)));
            EXPECT_TRUE(CBxPicBufAPI::InsertComponent(copy.Record(), c, plane));
        }
        ExpectSamePicture(copy, source);
    }
}

static double Converted(double sample, int bits, unsigned newBits)
{
    TestPicture picture = FlatPicture(1, 1, bits, {sample});
    EXPECT_TRUE(CBxPicBufAPI::ConvertBpcComp(picture.Record(), newBits, 1));
    return picture.At(0, 0);
}

TEST(Conversion, RoundsClampsAndSurvivesNumbersThatAreNone)
{
    const double nothing = std::numeric_limits<double>::quiet_NaN();
    const double cases[][3] = {{-3.7, 0, 0},    {99.5, 100, 100}, {255.4, 255, 255},
                               {300, 255, 300}, {nothing, 0, 0},  {1e20, 255, 65535}};
    for (const auto& [sample, in8, in16] : cases)
    {
        EXPECT_EQ(Converted(sample, 32, 8), in8) << sample;
        EXPECT_EQ(Converted(sample, 32, 16), in16) << sample;
    }
    // 16 bits are divided by 256; white stays white.
    const double deep[][2] = {{0x00FF, 0}, {0x0100, 1}, {0xFFFF, 255}};
    for (const auto& [from, to] : deep)
        EXPECT_EQ(Converted(from, 16, 8), to);
    EXPECT_EQ(Converted(255, 8, 16), 65535);
}

TEST(Conversion, ThroughFloatKeepsEveryIntegerValue)
{
    for (const int bits : {8, 16})
    {
        const int count = 1 << bits;
        const TestPicture source = PictureOf(count, 1, 1, bits, [](int x, int, int) { return x; });
        TestPicture picture = PictureOf(count, 1, 1, bits, [](int x, int, int) { return x; });
        ASSERT_TRUE(CBxPicBufAPI::ConvertBpcComp(picture.Record(), 32, 1));
        EXPECT_EQ(picture.At(count - 1, 0), count - 1);
        ASSERT_TRUE(CBxPicBufAPI::ConvertBpcComp(picture.Record(), unsigned(bits), 1));
        ExpectSamePicture(picture, source);
    }
}

TEST(Conversion, BetweenGreyAndColourTakesLuma)
{
    const double pure[3][3] = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}};
    const double grey[3] = {29, 150, 76}; // blue, green, red
    for (int i = 0; i < 3; ++i)
    {
        TestPicture picture = FlatPicture(2, 2, 8, {pure[i][0], pure[i][1], pure[i][2]});
        ASSERT_TRUE(CBxPicBufAPI::ConvertBpcComp(picture.Record(), 8, 1));
        EXPECT_EQ(picture.At(1, 1), grey[i]);
        ASSERT_TRUE(CBxPicBufAPI::ConvertBpcComp(picture.Record(), 8, 3));
        EXPECT_EQ(picture.At(1, 1, 2), grey[i]);
    }
    TestPicture kept = FlatPicture(2, 2, 8, {1, 2});
    EXPECT_FALSE(CBxPicBufAPI::ConvertBpcComp(kept.Record(), 8, 3));
    EXPECT_EQ(kept.At(1, 1, 1), 2);
}

TEST(ColourConversion, ComesBackWithinOneStepForEveryColour)
{
    TestPicture colours(4096, 1, 3, 8), converted(4096, 1, 3, 8);
    for (int block = 0; block < 4096; ++block)
    {
        for (int i = 0; i < 4096; ++i)
            for (int c = 0, colour = block * 4096 + i; c < 3; ++c)
                colours->data[3 * i + c] = uint8_t(colour >> 8 * c);
        (void)CBxPicBufAPI::ConvertRGBtoYUV(converted.Record(), colours);
        (void)CBxPicBufAPI::ConvertYUVtoRGB(converted.Record(), converted);
        int worst = 0;
        for (int i = 0; i < 3 * 4096; ++i)
            worst = std::max(worst, std::abs(colours->data[i] - converted->data[i]));
        ASSERT_LE(worst, 1) << "block " << block;
    }

    std::mt19937 random(7);
    const TestPicture deep =
        PictureOf(1000, 1000, 3, 16, [&](int, int, int) { return double(uint16_t(random())); });
    TestPicture back(1000, 1000, 3, 16);
    (void)CBxPicBufAPI::ConvertRGBtoYUV(back.Record(), deep);
    (void)CBxPicBufAPI::ConvertYUVtoRGB(back.Record(), back);
    ExpectSamePicture(back, deep, 1);
}

TEST(ColourConversion, PutsGreyInTheMiddleOfBothChromaPlanes)
{
    TestPicture colours = FlatPicture(2, 1, 8, {90, 90, 90});
    for (int c = 0; c < 3; ++c)
        colours.Set(1, 0, c, c == 2 ? 255 : 0);
    (void)CBxPicBufAPI::ConvertRGBtoYUV(colours.Record(), colours);
    const double expected[2][3] = {{90, 128, 128}, {76, 85, 255}}; // grey, red
    for (int x = 0; x < 2; ++x)
        for (int c = 0; c < 3; ++c)
            EXPECT_NEAR(colours.At(x, 0, c), expected[x][c], x) << x << ", " << c;
}
