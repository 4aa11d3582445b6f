#include "picture/PicBuf.h"

#include "tests/support/TestPictures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

TEST(PictureRecord, HasPackedRowsAndRefusesWhatItCannotDescribe)
{
    TestPicture odd(7, 3, 3, 16);
    EXPECT_EQ(odd.pic.stride, 42);
    EXPECT_EQ(odd.pic.size, 126);
    uint8_t* block = odd.pic.data;
    CBxPicBufAPI::ReinitHeap(&odd.pic, 7, 3, 3, 16);
    ASSERT_NE(odd.pic.data, nullptr);
    std::memset(block, 0,
                126); // the old address may be kept; the memory must be there

    const struct
    {
        int width, height, components, bits;
    } impossible[] = {{40000, 20000, 3, 8},           {0, 5, 3, 8},  {5, -1, 1, 8},
                      {65536, 65536, 1, 8},           {5, 5, 3, 12}, {5, 5, 0, 8},
                      {2000000000, 2000000000, 3, 32}};
    for (const auto& g : impossible)
    {
        TestPicture picture(4, 4, 1, 8);
        CBxPicBufAPI::ReinitHeap(&picture.pic, g.width, g.height, g.components, g.bits);
        EXPECT_EQ(picture.pic.data, nullptr) << g.width << "x" << g.height;
        EXPECT_EQ(picture.pic.size, 0);
        EXPECT_EQ(picture.pic.width, 0);
    }
    CBxPicBufAPI::DoneHeap(&odd.pic);
    CBxPicBufAPI::DoneHeap(&odd.pic);
    EXPECT_EQ(odd.pic.data, nullptr);
}

TEST(PictureCopies, TouchNothingOutsideTheirRectangle)
{
    TestPicture small = FlatPicture(4, 4, 8, {1, 2, 3});
    TestPicture large(8, 8, 3, 8);
    CBxPicBufAPI::SetConst(&large.pic, 7);
    CBxPicBufAPI::CopyRect(&large.pic, small.pic, {2, 2}, {0, 0}, {4, 4});
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            for (int c = 0; c < 3; ++c)
            {
                const bool inside = x >= 2 && x < 6 && y >= 2 && y < 6;
                EXPECT_EQ(large.At(x, y, c), inside ? c + 1 : 7) << x << ", " << y;
            }

    TestPicture other(8, 8, 3, 8);
    CBxPicBufAPI::SetConst(&other.pic, 9);
    CBxPicBufAPI::Copy(&other.pic, large.pic, {2, 2, 6, 3});
    EXPECT_EQ(other.At(2, 2, 1), 2);
    EXPECT_EQ(other.At(5, 2, 2), 3);
    EXPECT_EQ(other.At(1, 2), 9);
    EXPECT_EQ(other.At(6, 2), 9);
    EXPECT_EQ(other.At(2, 3), 9);
    CBxPicBufAPI::SetConst(&other.pic, {0, 7, 8, 8}, 200);
    EXPECT_EQ(other.At(0, 7), 200);
    EXPECT_EQ(other.At(7, 6), 9);
    CBxPicBufAPI::Copy(&other.pic, large.pic);
    ExpectSamePicture(other.pic, large.pic);
}

TEST(PictureCopies, WorkOnAWrapperWithLongerRows)
{
    uint8_t memory[4 * 12];
    std::memset(memory, 5, sizeof memory);
    SBxPicBuf wrapper = {memory, sizeof memory, 12, 3, 4, 3, 8}; // 9 of 12 bytes used
    const TestPicture flat = FlatPicture(3, 4, 8, {10, 20, 30});
    CBxPicBufAPI::Copy(&wrapper, flat.pic);
    for (int y = 0; y < 4; ++y)
    {
        EXPECT_EQ(memory[12 * y + 8], 30);
        EXPECT_EQ(memory[12 * y + 9], 5) << "beyond the picture's row";
    }
}

TEST(SixteenBitSamples, AreSetToTheByteAsANumber)
{
    TestPicture deep(3, 2, 1, 16);
    CBxPicBufAPI::SetConst(&deep.pic, 255);
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
            EXPECT_TRUE(CBxPicBufAPI::ExtractComponent(&plane.pic, c, source.pic));
            EXPECT_EQ(plane.At(12, 6), source.At(12, 6, int(c)));
            EXPECT_TRUE(CBxPicBufAPI::InsertComponent(&copy.pic, c, plane.pic));
        }
        ExpectSamePicture(copy.pic, source.pic);
    }
}

TEST(Conversion, RoundsClampsAndSurvivesNumbersThatAreNone)
{
    const double values[] = {-3.7, 99.5, 255.4, 300.0, std::numeric_limits<double>::quiet_NaN()};
    const double expected8[] = {0, 100, 255, 255, 0};
    const double expected16[] = {0, 100, 255, 300, 0};
    for (int i = 0; i < 5; ++i)
    {
        TestPicture picture = FlatPicture(1, 1, 32, {values[i]});
        ASSERT_TRUE(CBxPicBufAPI::ConvertBpcComp(&picture.pic, 8, 1));
        EXPECT_EQ(picture.At(0, 0), expected8[i]) << values[i];
        picture = FlatPicture(1, 1, 32, {values[i]});
        ASSERT_TRUE(CBxPicBufAPI::ConvertBpcComp(&picture.pic, 16, 1));
        EXPECT_EQ(picture.At(0, 0), expected16[i]) << values[i];
    }
    TestPicture huge = FlatPicture(1, 1, 32, {1e20});
    ASSERT_TRUE(CBxPicBufAPI::ConvertBpcComp(&huge.pic, 16, 1));
    EXPECT_EQ(huge.At(0, 0), 65535);
}

TEST(Conversion, ToEightBitsDividesBy256AndBackKeepsWhiteWhite)
{
    TestPicture deep(3, 1, 1, 16);
    deep.Set(0, 0, 0, 0x00FF);
    deep.Set(1, 0, 0, 0x0100);
    deep.Set(2, 0, 0, 0xFFFF);
    ASSERT_TRUE(CBxPicBufAPI::ConvertBpcComp(&deep.pic, 8, 1));
    EXPECT_EQ(deep.At(0, 0), 0);
    EXPECT_EQ(deep.At(1, 0), 1);
    EXPECT_EQ(deep.At(2, 0), 255);
    ASSERT_TRUE(CBxPicBufAPI::ConvertBpcComp(&deep.pic, 16, 1));
    EXPECT_EQ(deep.At(2, 0), 65535);
}

TEST(Conversion, ThroughFloatKeepsEveryIntegerValue)
{
    for (const int bits : {8, 16})
    {
        const int count = 1 << bits;
        const TestPicture source = PictureOf(count, 1, 1, bits, [](int x, int, int) { return x; });
        TestPicture picture = PictureOf(count, 1, 1, bits, [](int x, int, int) { return x; });
        ASSERT_TRUE(CBxPicBufAPI::ConvertBpcComp(&picture.pic, 32, 1));
        EXPECT_EQ(picture.At(count - 1, 0), count - 1);
        ASSERT_TRUE(CBxPicBufAPI::ConvertBpcComp(&picture.pic, unsigned(bits), 1));
        ExpectSamePicture(picture.pic, source.pic);
    }
}

TEST(Conversion, BetweenGreyAndColourTakesLuma)
{
    const double pure[3][3] = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}};
    const double grey[3] = {29, 150, 76}; // blue, green, red
    for (int i = 0; i < 3; ++i)
    {
        TestPicture picture = FlatPicture(2, 2, 8, {pure[i][0], pure[i][1], pure[i][2]});
        ASSERT_TRUE(CBxPicBufAPI::ConvertBpcComp(&picture.pic, 8, 1));
        EXPECT_EQ(picture.At(1, 1), grey[i]);
        ASSERT_TRUE(CBxPicBufAPI::ConvertBpcComp(&picture.pic, 8, 3));
        EXPECT_EQ(picture.At(1, 1, 2), grey[i]);
    }
    TestPicture white = FlatPicture(2, 2, 16, {65535, 65535, 65535});
    ASSERT_TRUE(CBxPicBufAPI::ConvertBpcComp(&white.pic, 8, 1));
    EXPECT_EQ(white.At(0, 0), 255);
    TestPicture kept = FlatPicture(2, 2, 8, {1, 2});
    EXPECT_FALSE(CBxPicBufAPI::ConvertBpcComp(&kept.pic, 8, 3));
    EXPECT_EQ(kept.At(1, 1, 1), 2);
}

static int LargestDifference(const SBxPicBuf& a, const SBxPicBuf& b)
{
    int worst = 0;
    const int samples = a.width * a.height * a.components;
    for (int i = 0; i < samples; ++i)
    {
        const int d = a.bitsPerComponent == 8 ? int(a.data[i]) - int(b.data[i])
                                              : int(reinterpret_cast<uint16_t*>(a.data)[i]) -
                                                    int(reinterpret_cast<uint16_t*>(b.data)[i]);
        worst = std::max(worst, std::abs(d));
    }
    return worst;
}

TEST(ColourConversion, ComesBackWithinOneStepForEveryColour)
{
    TestPicture colours(4096, 1, 3, 8), converted(4096, 1, 3, 8);
    for (int block = 0; block < 4096; ++block)
    {
        for (int i = 0; i < 4096; ++i)
        {
            const int colour = block * 4096 + i;
            uint8_t* pixel = colours.pic.data + 3 * i;
            pixel[0] = uint8_t(colour), pixel[1] = uint8_t(colour >> 8),
            pixel[2] = uint8_t(colour >> 16);
        }
        CBxPicBufAPI::ConvertRGBtoYUV(&converted.pic, colours.pic);
        CBxPicBufAPI::ConvertYUVtoRGB(&converted.pic, converted.pic);
        ASSERT_LE(LargestDifference(colours.pic, converted.pic), 1) << "block " << block;
    }

    TestPicture deep(1000, 1000, 3, 16), back(1000, 1000, 3, 16);
    std::mt19937 random(7);
    for (int i = 0; i < 3000000; ++i)
        reinterpret_cast<uint16_t*>(deep.pic.data)[i] = uint16_t(random());
    CBxPicBufAPI::ConvertRGBtoYUV(&back.pic, deep.pic);
    CBxPicBufAPI::ConvertYUVtoRGB(&back.pic, back.pic);
    EXPECT_LE(LargestDifference(deep.pic, back.pic), 1);
}

TEST(ColourConversion, PutsGreyInTheMiddleOfBothChromaPlanes)
{
    TestPicture grey = FlatPicture(1, 1, 8, {90, 90, 90});
    CBxPicBufAPI::ConvertRGBtoYUV(&grey.pic, grey.pic);
    EXPECT_EQ(grey.At(0, 0, 0), 90);
    EXPECT_EQ(grey.At(0, 0, 1), 128);
    EXPECT_EQ(grey.At(0, 0, 2), 128);
    TestPicture red = FlatPicture(1, 1, 8, {0, 0, 255});
    CBxPicBufAPI::ConvertRGBtoYUV(&red.pic, red.pic);
    EXPECT_EQ(red.At(0, 0, 0), 76);
    EXPECT_LT(red.At(0, 0, 1), 128);
    EXPECT_GT(red.At(0, 0, 2), 250);
}
