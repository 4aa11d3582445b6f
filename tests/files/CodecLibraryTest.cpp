// What the program counts on in its codec library, wherever it comes from: this machine's packages
// or our own build for Windows.

#include <FreeImage.h>
#include <gtest/gtest.h>

#include <cstdlib>

// What is left of a gradient after a file in memory, as its largest difference.
static int LossOf(FREE_IMAGE_FORMAT format, FREE_IMAGE_TYPE type, int bitsPerPixel, int flags)
{
    FIBITMAP* bitmap = FreeImage_AllocateT(type, 37, 1, bitsPerPixel);
    const int bytes = int(FreeImage_GetLine(bitmap));
    for (int i = 0; i < bytes; ++i)
        FreeImage_GetBits(bitmap)[i] = BYTE(20 + i / 2);
    FIMEMORY* file = FreeImage_OpenMemory();
    FreeImage_SaveToMemory(format, bitmap, file, flags);
    FreeImage_SeekMemory(file, 0, SEEK_SET);
    FIBITMAP* loaded = FreeImage_LoadFromMemory(FreeImage_GetFileTypeFromMemory(file, 0), file, 0);
    int loss = loaded && int(FreeImage_GetLine(loaded)) == bytes ? 0 : 256;
    for (int i = 0; i < bytes && loss < 256; ++i)
        loss =
            std::max(loss, std::abs(FreeImage_GetBits(bitmap)[i] - FreeImage_GetBits(loaded)[i]));
    FreeImage_CloseMemory(file);
    FreeImage_Unload(loaded);
    FreeImage_Unload(bitmap);
    return loss;
}

// Format codes are positions in the list of registered plugins: one plugin less, and every later
// format would answer to the wrong code. JPEG rounds in its colour space and its transform.
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
        EXPECT_STREQ(FreeImage_GetFormatFromFIF(row.format), row.name);
        EXPECT_LE(LossOf(row.format, row.type, row.bitsPerPixel, row.saveFlags), row.tolerance)
            << row.name << ", " << row.bitsPerPixel;
    }
    EXPECT_STREQ(FreeImage_GetFormatFromFIF(FIF_RAW), "RAW");
    FreeImage_DeInitialise();
}
