#include "files/ImageCodec.h"

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
    const bool refused = PictureFromBitmap(bitmap, picture.Record(), alpha.Record());
    EXPECT_EQ(picture->data == nullptr, refused || !bitmap);
    EXPECT_TRUE(alpha->data == nullptr || (bitmap && !refused));
    return refused;
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
    ASSERT_FALSE(PictureFromBitmap(GreyBitmap(255, 0).get(), picture.Record(), alpha.Record()));
    for (int x = 0; x < 256; ++x)
        EXPECT_EQ(picture.At(x, 0), 255 - x);
    EXPECT_FALSE(IsRefused(GreyBitmap(0, 255).get()));
    EXPECT_TRUE(IsRefused(GreyBitmap(0, 127).get()));
    EXPECT_TRUE(IsRefused(GreyBitmap(0, 255, true).get()));
}

TEST(PictureToBitmap, LeavesAnAlphaPlaneOutOfAGreyPicture)
{
    const TestPicture grey = FlatPicture(3, 3, 8, {77}), alpha = FlatPicture(3, 3, 8, {1});
    const Bitmap bitmap = Own(BitmapFromPicture(grey, alpha.Record()));
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(FreeImage_GetBPP(bitmap.get()), 8u);
}

} // namespace
