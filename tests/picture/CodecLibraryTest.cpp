// What the program counts on in its codec library, wherever it comes from: this machine's packages
// or our own build for Windows.

#include <FreeImage.h>
#include <gtest/gtest.h>

#include <cstdlib>

namespace
{

// A gradient, and what comes back of it through a file in memory; 256 when nothing does.
int LargestDifferenceAfterAFile(FREE_IMAGE_FORMAT format, FREE_IMAGE_TYPE type, int bitsPerPixel,
                                int flags)
{
    FIBITMAP* bitmap = FreeImage_AllocateT(type, 37, 23, bitsPerPixel);
    const int rowBytes = int(FreeImage_GetLine(bitmap));
    for (int y = 0; y < 23; ++y)
        for (int i = 0; i < rowBytes; ++i)
            FreeImage_GetScanLine(bitmap, y)[i] = BYTE(20 + i / 2 + 5 * y);
    FIMEMORY* file = FreeImage_OpenMemory();
    EXPECT_TRUE(FreeImage_SaveToMemory(format, bitmap, file, flags));
    FreeImage_SeekMemory(file, 0, SEEK_SET);
    FIBITMAP* loaded = FreeImage_LoadFromMemory(FreeImage_GetFileTypeFromMemory(file, 0), file, 0);
    int largest = 256;
    if (loaded && FreeImage_GetHeight(loaded) == 23 && int(FreeImage_GetLine(loaded)) == rowBytes)
    {
        largest = 0;
        for (int y = 0; y < 23; ++y)
            for (int i = 0; i < rowBytes; ++i)
                largest = std::max(largest, std::abs(FreeImage_GetScanLine(bitmap, y)[i] -
                                                     FreeImage_GetScanLine(loaded, y)[i]));
    }
    FreeImage_CloseMemory(file);
    FreeImage_Unload(loaded);
    FreeImage_Unload(bitmap);
    return largest;
}

// Format codes are positions in the list of registered plugins: one plugin less, and every later
// format would answer to the wrong code. JPEG at full quality without colour subsampling still
// rounds in its colour space and its transform; everything else keeps each bit.
TEST(CodecLibrary, KnowsEveryFormatUnderItsCodeAndReadsBackWhatItWrote)
{
    FreeImage_Initialise(TRUE); // a static library registers its formats when told to
    const struct
    {
        FREE_IMAGE_FORMAT format;
        const char* name;
        FREE_IMAGE_TYPE type;
        int bitsPerPixel, saveFlags, tolerance;
    } rows[] = {
        {FIF_BMP, "BMP", FIT_BITMAP, 24, 0, 0},
        {FIF_JPEG, "JPEG", FIT_BITMAP, 24, 100 | JPEG_SUBSAMPLING_444, 6},
        {FIF_JPEG, "JPEG", FIT_BITMAP, 8, 100, 3},
        {FIF_PNG, "PNG", FIT_BITMAP, 32, 0, 0},
        {FIF_PNG, "PNG", FIT_RGB16, 48, 0, 0},
        {FIF_TIFF, "TIFF", FIT_BITMAP, 24, TIFF_LZW, 0},
        {FIF_TIFF, "TIFF", FIT_RGB16, 48, TIFF_DEFLATE, 0},
        {FIF_TIFF, "TIFF", FIT_BITMAP, 24, TIFF_JPEG, 6},
        {FIF_PPMRAW, "PPMRAW", FIT_BITMAP, 24, 0, 0},
        {FIF_WEBP, "WebP", FIT_BITMAP, 32, WEBP_LOSSLESS, 0},
        {FIF_GIF, "GIF", FIT_BITMAP, 8, 0, 0},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(testing::Message() << row.name << ", " << row.bitsPerPixel);
        EXPECT_STREQ(FreeImage_GetFormatFromFIF(row.format), row.name);
        EXPECT_LE(
            LargestDifferenceAfterAFile(row.format, row.type, row.bitsPerPixel, row.saveFlags),
            row.tolerance);
    }
    EXPECT_STREQ(FreeImage_GetFormatFromFIF(FIF_RAW), "RAW");
    EXPECT_TRUE(FreeImage_FIFSupportsReading(FIF_RAW));
    EXPECT_FALSE(FreeImage_FIFSupportsWriting(FIF_RAW));
    FreeImage_DeInitialise();
}

} // namespace
