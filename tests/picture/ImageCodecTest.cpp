#include "picture/ImageCodec.h"

#include "tests/support/TestPictures.h"

#include <FreeImage.h>
#include <gtest/gtest.h>

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

bool IsRefused(FIBITMAP* bitmap)
{
    TestPicture picture(2, 2, 3, 8), alpha(2, 2, 1, 8); // released, not kept
    const bool refused = PictureFromBitmap(bitmap, &picture.pic, &alpha.pic);
    EXPECT_EQ(picture.pic.data == nullptr, refused || !bitmap);
    EXPECT_TRUE(alpha.pic.data == nullptr || (bitmap && !refused));
    return refused;
}

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

// Rows that FreeImage pads, out of a picture whose own rows go on.
TEST(BitmapOfEveryKind, HoldsThePictureAndGivesItBack)
{
    const int width = 5, height = 3;
    for (const Kind& kind : kKinds)
    {
        SCOPED_TRACE(kind.name);
        const TestPicture wide =
            PictureOf(width + 4, height, kind.components, kind.bits,
                      [&](int x, int y, int c) { return ValueAt(x, y, c, kind.bits); });
        const TestPicture alpha =
            PictureOf(width, height, 1, kind.bits,
                      [&](int x, int y, int) { return ValueAt(x, y, kAlpha, kind.bits); });
        SBxPicBuf picture = wide.pic;
        picture.width = width;
        const Bitmap bitmap = Own(BitmapFromPicture(picture, kind.alpha ? &alpha.pic : nullptr));
        ASSERT_TRUE(bitmap);
        ASSERT_EQ(FreeImage_GetImageType(bitmap.get()), kind.type);
        ASSERT_EQ(FreeImage_GetBPP(bitmap.get()), unsigned(kind.bitsPerPixel));
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                for (int c = 0; c < kind.components + kind.alpha; ++c)
                {
                    const int channel = c < kind.components ? c : int(kAlpha);
                    ASSERT_EQ(BitmapSample(bitmap.get(), kind, x, y, channel),
                              ValueAt(x, y, channel, kind.bits))
                        << x << ", " << y << ", channel " << channel;
                }

        TestPicture back, alphaBack;
        ASSERT_FALSE(PictureFromBitmap(bitmap.get(), &back.pic, &alphaBack.pic));
        ExpectSamePicture(back.pic, picture);
        ASSERT_EQ(alphaBack.pic.data != nullptr, kind.alpha);
        if (kind.alpha)
            ExpectSamePicture(alphaBack.pic, alpha.pic);
    }
}

// Several of these have as many bits per pixel as an accepted kind.
TEST(BitmapOfAnotherKind, IsRefused)
{
    const std::pair<FREE_IMAGE_TYPE, int> kinds[] = {
        {FIT_BITMAP, 1},  {FIT_BITMAP, 4},  {FIT_BITMAP, 16},  {FIT_INT16, 16},
        {FIT_UINT32, 32}, {FIT_INT32, 32},  {FIT_FLOAT, 32},   {FIT_DOUBLE, 64},
        {FIT_RGBF, 96},   {FIT_RGBAF, 128}, {FIT_COMPLEX, 128}};
    for (const auto& [type, bits] : kinds)
        EXPECT_TRUE(IsRefused(NewBitmap(type, 4, 4, bits).get())) << type << ", " << bits;
    EXPECT_FALSE(IsRefused(nullptr)) << "no bitmap is no failure, and gives no picture";
}

TEST(BitmapWithInks, IsRefused)
{
    for (const auto& [type, bits] : {std::pair(FIT_BITMAP, 32), std::pair(FIT_RGBA16, 64)})
    {
        const Bitmap bitmap = NewBitmap(type, 4, 4, bits);
        EXPECT_FALSE(IsRefused(bitmap.get()));
        FreeImage_GetICCProfile(bitmap.get())->flags |= FIICC_COLOR_IS_CMYK;
        EXPECT_TRUE(IsRefused(bitmap.get())) << bits;
    }
}

// A palette that runs from one grey to the other; one entry may be coloured.
Bitmap GreyBitmap(int first, int last, bool coloured = false)
{
    Bitmap bitmap = NewBitmap(FIT_BITMAP, 256, 1, 8);
    for (int i = 0; i < 256; ++i)
    {
        const BYTE grey = BYTE(first + (last - first) * i / 255);
        FreeImage_GetPalette(bitmap.get())[i] = {grey, grey, grey, 0};
        FreeImage_GetScanLine(bitmap.get(), 0)[i] = BYTE(i);
    }
    if (coloured)
        FreeImage_GetPalette(bitmap.get())[200] = {1, 2, 3, 0};
    return bitmap;
}

TEST(EightBitPalette, OfAllGreysIsReadAsTheGreysThatItShows)
{
    TestPicture picture, alpha;
    ASSERT_FALSE(PictureFromBitmap(GreyBitmap(255, 0).get(), &picture.pic, &alpha.pic));
    for (int x = 0; x < 256; ++x)
        EXPECT_EQ(picture.At(x, 0), 255 - x);
    EXPECT_FALSE(IsRefused(GreyBitmap(0, 255).get()));
    EXPECT_TRUE(IsRefused(GreyBitmap(0, 127).get()));
    EXPECT_TRUE(IsRefused(GreyBitmap(0, 255, true).get()));
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
    TestPicture picture, alpha;
    ASSERT_FALSE(PictureFromBitmap(bitmap.get(), &picture.pic, &alpha.pic));
    EXPECT_EQ(picture.At(0, 0), 0xEDCB);
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

} // namespace
