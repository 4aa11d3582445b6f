#include "picture/ImageCodec.h"

#include "tests/support/TestPictures.h"

#include <FreeImage.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace
{

using Bitmap = std::unique_ptr<FIBITMAP, void (*)(FIBITMAP*)>;

Bitmap Own(FIBITMAP* bitmap)
{
    return Bitmap(bitmap, [](FIBITMAP* owned) { FreeImage_Unload(owned); });
}

Bitmap NewBitmap(FREE_IMAGE_TYPE type, int width, int height, int bitsPerPixel)
{
    return Own(FreeImage_AllocateT(type, width, height, bitsPerPixel));
}

struct Pair
{
    TestPicture picture, alpha;
    bool refused;

    explicit Pair(FIBITMAP* bitmap) : refused(PictureFromBitmap(bitmap, &picture.pic, &alpha.pic))
    {
    }
};

enum Channel
{
    kBlue,
    kGreen,
    kRed,
    kAlpha
};

// A different number for every place and channel, using all bits of the sample.
int ValueAt(int x, int y, int channel, int bits)
{
    return (x * 53 + y * 101 + channel * 71 + 9) * (bits == 16 ? 173 : 1) % (1 << bits);
}

struct Kind
{
    const char* name;
    FREE_IMAGE_TYPE type;
    int bitsPerPixel, components, bits;
    bool alpha;
    int place[4]; // where blue, green, red and alpha stand in the bitmap's pixel
};

const Kind kKinds[] = {
    {"Grey8", FIT_BITMAP, 8, 1, 8, false, {0, 0, 0, 0}},
    {"Grey16", FIT_UINT16, 16, 1, 16, false, {0, 0, 0, 0}},
    {"Colour8", FIT_BITMAP, 24, 3, 8, false, {0, 1, 2, 0}},
    {"Colour16", FIT_RGB16, 48, 3, 16, false, {2, 1, 0, 0}},
    {"Alpha8", FIT_BITMAP, 32, 3, 8, true, {0, 1, 2, 3}},
    {"Alpha16", FIT_RGBA16, 64, 3, 16, true, {2, 1, 0, 3}},
};

// Sample of a bitmap, with y counted from the top.
int BitmapSample(FIBITMAP* bitmap, const Kind& kind, int x, int y, int channel)
{
    const BYTE* row = FreeImage_GetScanLine(bitmap, int(FreeImage_GetHeight(bitmap)) - 1 - y);
    const int index = x * (kind.bitsPerPixel / kind.bits) + kind.place[channel];
    return kind.bits == 8 ? row[index] : reinterpret_cast<const WORD*>(row)[index];
}

class EveryKind : public testing::TestWithParam<Kind>
{
protected:
    const Kind& kind = GetParam();
    const int width = 5, height = 3; // rows that FreeImage pads

    TestPicture ExpectedPicture() const
    {
        return PictureOf(width, height, kind.components, kind.bits,
                         [this](int x, int y, int c) { return ValueAt(x, y, c, kind.bits); });
    }
    TestPicture ExpectedAlpha() const
    {
        return PictureOf(width, height, 1, kind.bits,
                         [this](int x, int y, int) { return ValueAt(x, y, kAlpha, kind.bits); });
    }
    void ExpectBitmapHoldsTheValues(FIBITMAP* bitmap) const
    {
        ASSERT_TRUE(bitmap);
        ASSERT_EQ(FreeImage_GetImageType(bitmap), kind.type);
        ASSERT_EQ(FreeImage_GetBPP(bitmap), unsigned(kind.bitsPerPixel));
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                for (int c = 0; c < kind.components + kind.alpha; ++c)
                {
                    const int channel = c < kind.components ? c : int(kAlpha);
                    ASSERT_EQ(BitmapSample(bitmap, kind, x, y, channel),
                              ValueAt(x, y, channel, kind.bits))
                        << x << ", " << y << ", channel " << channel;
                }
    }
};

TEST_P(EveryKind, ComesBackFromABitmapTopRowFirstAndBlueFirst)
{
    const TestPicture picture = ExpectedPicture(), alpha = ExpectedAlpha();
    const Bitmap bitmap = Own(BitmapFromPicture(picture.pic, kind.alpha ? &alpha.pic : nullptr));
    ExpectBitmapHoldsTheValues(bitmap.get()); // so that two errors do not cancel out
    const Pair pair(bitmap.get());
    ASSERT_FALSE(pair.refused);
    ExpectSamePicture(pair.picture.pic, picture.pic);
    ASSERT_EQ(pair.alpha.pic.data != nullptr, kind.alpha);
    if (kind.alpha)
        ExpectSamePicture(pair.alpha.pic, alpha.pic);
}

TEST_P(EveryKind, IsReadThroughAnyStride)
{
    TestPicture wide =
        PictureOf(width + 4, height, kind.components, kind.bits,
                  [this](int x, int y, int c) { return ValueAt(x, y, c, kind.bits); });
    SBxPicBuf part = wide.pic;
    part.width = width;
    const TestPicture alpha = ExpectedAlpha();
    ExpectBitmapHoldsTheValues(
        Own(BitmapFromPicture(part, kind.alpha ? &alpha.pic : nullptr)).get());
}

INSTANTIATE_TEST_SUITE_P(Bitmap, EveryKind, testing::ValuesIn(kKinds),
                         [](const auto& test) { return test.param.name; });

struct RefusedBitmap
{
    const char* name;
    FREE_IMAGE_TYPE type;
    int bitsPerPixel;
};

class RefusedKind : public testing::TestWithParam<RefusedBitmap>
{
};

// Several of these have as many bits per pixel as an accepted kind.
TEST_P(RefusedKind, LeavesBothRecordsEmpty)
{
    const Bitmap bitmap = NewBitmap(GetParam().type, 4, 4, GetParam().bitsPerPixel);
    ASSERT_TRUE(bitmap);
    TestPicture picture(2, 2, 3, 8), alpha(2, 2, 1, 8); // released, not kept
    EXPECT_TRUE(PictureFromBitmap(bitmap.get(), &picture.pic, &alpha.pic));
    EXPECT_EQ(picture.pic.data, nullptr);
    EXPECT_EQ(alpha.pic.data, nullptr);
}

INSTANTIATE_TEST_SUITE_P(Bitmap, RefusedKind,
                         testing::Values(RefusedBitmap{"OneBit", FIT_BITMAP, 1},
                                         RefusedBitmap{"FourBits", FIT_BITMAP, 4},
                                         RefusedBitmap{"Packed565", FIT_BITMAP, 16},
                                         RefusedBitmap{"Signed16", FIT_INT16, 16},
                                         RefusedBitmap{"Unsigned32", FIT_UINT32, 32},
                                         RefusedBitmap{"Signed32", FIT_INT32, 32},
                                         RefusedBitmap{"Float", FIT_FLOAT, 32},
                                         RefusedBitmap{"Double", FIT_DOUBLE, 64},
                                         RefusedBitmap{"Complex", FIT_COMPLEX, 128},
                                         RefusedBitmap{"FloatColour", FIT_RGBF, 96},
                                         RefusedBitmap{"FloatAlpha", FIT_RGBAF, 128}),
                         [](const auto& test) { return test.param.name; });

TEST(BitmapWithInks, IsRefused)
{
    for (const auto& [type, bits] : {std::pair(FIT_BITMAP, 32), std::pair(FIT_RGBA16, 64)})
    {
        const Bitmap bitmap = NewBitmap(type, 4, 4, bits);
        EXPECT_FALSE(Pair(bitmap.get()).refused);
        FreeImage_GetICCProfile(bitmap.get())->flags |= FIICC_COLOR_IS_CMYK;
        EXPECT_TRUE(Pair(bitmap.get()).refused) << bits;
    }
}

Bitmap GreyBitmap(const std::function<RGBQUAD(int)>& paletteEntry)
{
    Bitmap bitmap = NewBitmap(FIT_BITMAP, 256, 1, 8);
    for (int i = 0; i < 256; ++i)
    {
        FreeImage_GetPalette(bitmap.get())[i] = paletteEntry(i);
        FreeImage_GetScanLine(bitmap.get(), 0)[i] = BYTE(i);
    }
    return bitmap;
}

RGBQUAD Grey(int value)
{
    return {BYTE(value), BYTE(value), BYTE(value), 0};
}

TEST(EightBitPalette, OfGreysIsReadAsTheGreysThatItShows)
{
    const Pair up(GreyBitmap([](int i) { return Grey(i); }).get());
    const Pair down(GreyBitmap([](int i) { return Grey(255 - i); }).get());
    ASSERT_FALSE(up.refused || down.refused);
    ExpectSamePicture(up.picture.pic,
                      PictureOf(256, 1, 1, 8, [](int x, int, int) { return x; }).pic);
    ExpectSamePicture(down.picture.pic,
                      PictureOf(256, 1, 1, 8, [](int x, int, int) { return 255 - x; }).pic);
}

TEST(EightBitPalette, OfAnythingElseIsRefused)
{
    const auto oneColour = [](int i) { return i == 200 ? RGBQUAD{1, 2, 3, 0} : Grey(i); };
    EXPECT_TRUE(Pair(GreyBitmap(oneColour).get()).refused);
    EXPECT_TRUE(Pair(GreyBitmap([](int i) { return Grey(i / 2); }).get()).refused);
}

TEST(SixteenBitGreys, AreTrueGreysWhereABitmapSaysThatItCountsFromWhite)
{
    const Bitmap bitmap = NewBitmap(FIT_UINT16, 1, 1, 16);
    *reinterpret_cast<WORD*>(FreeImage_GetScanLine(bitmap.get(), 0)) = 0x1234;
    const WORD fromWhite = 0;
    FITAG* tag = FreeImage_CreateTag();
    FreeImage_SetTagKey(tag, "PhotometricInterpretation");
    FreeImage_SetTagType(tag, FIDT_SHORT);
    FreeImage_SetTagLength(tag, sizeof fromWhite);
    FreeImage_SetTagCount(tag, 1);
    FreeImage_SetTagValue(tag, &fromWhite);
    FreeImage_SetMetadata(FIMD_EXIF_MAIN, bitmap.get(), "PhotometricInterpretation", tag);
    FreeImage_DeleteTag(tag);
    EXPECT_EQ(Pair(bitmap.get()).picture.At(0, 0), 0xEDCB);
}

TEST(NoBitmap, IsNoFailureAndGivesNoPicture)
{
    TestPicture picture(2, 2, 3, 8), alpha(2, 2, 1, 8);
    EXPECT_FALSE(PictureFromBitmap(nullptr, &picture.pic, &alpha.pic));
    EXPECT_EQ(picture.pic.data, nullptr);
    EXPECT_EQ(alpha.pic.data, nullptr);
}

TEST(PictureToBitmap, LeavesAnAlphaPlaneOutOfAGreyPicture)
{
    const TestPicture grey = FlatPicture(3, 3, 8, {77}), alpha = FlatPicture(3, 3, 8, {1});
    const Bitmap bitmap = Own(BitmapFromPicture(grey.pic, &alpha.pic));
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(FreeImage_GetBPP(bitmap.get()), 8u);
}

TEST(PictureToBitmap, GivesNothingForPicturesThatNoFileHolds)
{
    EXPECT_EQ(BitmapFromPicture(TestPicture().pic, nullptr), nullptr);
    EXPECT_EQ(BitmapFromPicture(TestPicture(4, 4, 1, 32).pic, nullptr), nullptr);
}

TEST(Format, HoldsDepthsAndAlphaAsItsFilesDo)
{
    struct
    {
        int format;
        bool deep, alpha8, alpha16;
    } rows[] = {
        {FIF_BMP, false, true, false},
        {FIF_JPEG, false, false, false},
        {FIF_TIFF, true, true, true},
        {FIF_PNG, true, true, true},
    };
    const TestPicture grey8(2, 2, 1, 8), grey16(2, 2, 1, 16);
    const TestPicture colour8(2, 2, 3, 8), colour16(2, 2, 3, 16);
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.format);
        EXPECT_TRUE(FormatHoldsPicture(row.format, grey8.pic, false));
        EXPECT_TRUE(FormatHoldsPicture(row.format, colour8.pic, false));
        EXPECT_EQ(FormatHoldsPicture(row.format, grey16.pic, false), row.deep);
        EXPECT_EQ(FormatHoldsPicture(row.format, colour16.pic, false), row.deep);
        EXPECT_EQ(FormatHoldsPicture(row.format, colour8.pic, true), row.alpha8);
        EXPECT_EQ(FormatHoldsPicture(row.format, colour16.pic, true), row.alpha16);
    }
}

} // namespace
