// What the program counts on in its outside libraries, wherever they come from: this machine's
// packages or our own build for Windows.

#include <FreeImage.h>
#include <gtest/gtest.h>
#include <oneapi/tbb/blocked_range2d.h>
#include <oneapi/tbb/parallel_for.h>

#include <atomic>
#include <cstring>
#include <utility>
#include <vector>

namespace
{

// A static FreeImage registers its formats when told to, a shared one when it is loaded.
struct FreeImageSession
{
    FreeImageSession() { FreeImage_Initialise(TRUE); }
    ~FreeImageSession() { FreeImage_DeInitialise(); }
};

struct NamedFormat
{
    FREE_IMAGE_FORMAT code;
    const char* name;
    bool reads, writes;
};

// Format codes are positions in the list of registered plugins: one plugin less, and every later
// format would answer to the wrong code.
const NamedFormat kFormats[] = {
    {FIF_BMP, "BMP", true, true},   {FIF_JPEG, "JPEG", true, true},
    {FIF_PNG, "PNG", true, true},   {FIF_PPMRAW, "PPMRAW", true, true},
    {FIF_TIFF, "TIFF", true, true}, {FIF_GIF, "GIF", true, true},
    {FIF_WEBP, "WebP", true, true}, {FIF_RAW, "RAW", true, false},
};

TEST(CodecLibrary, KnowsEveryFormatUnderItsCode)
{
    FreeImageSession session;
    for (const NamedFormat& format : kFormats)
    {
        SCOPED_TRACE(format.name);
        EXPECT_EQ(FreeImage_GetFIFFromFormat(format.name), format.code);
        ASSERT_NE(FreeImage_GetFormatFromFIF(format.code), nullptr);
        EXPECT_STREQ(FreeImage_GetFormatFromFIF(format.code), format.name);
        EXPECT_EQ(FreeImage_FIFSupportsReading(format.code), BOOL(format.reads));
        EXPECT_EQ(FreeImage_FIFSupportsWriting(format.code), BOOL(format.writes));
    }
    EXPECT_EQ(FreeImage_GetFIFFromFilename("photo.JPG"), FIF_JPEG);
    EXPECT_EQ(FreeImage_GetFIFFromFilename("scan.tif"), FIF_TIFF);
}

FIBITMAP* MakeGradient(FREE_IMAGE_TYPE type, int bitsPerPixel)
{
    FIBITMAP* bitmap = FreeImage_AllocateT(type, 37, 23, bitsPerPixel);
    for (unsigned y = 0; y < FreeImage_GetHeight(bitmap); ++y)
    {
        BYTE* row = FreeImage_GetScanLine(bitmap, int(y));
        for (unsigned i = 0; i < FreeImage_GetLine(bitmap); ++i)
            row[i] = BYTE(20 + i / 2 + 5 * y);
    }
    return bitmap;
}

FIBITMAP* ThroughFile(FIBITMAP* bitmap, FREE_IMAGE_FORMAT format, int flags)
{
    FIMEMORY* file = FreeImage_OpenMemory();
    FIBITMAP* loaded = nullptr;
    if (FreeImage_SaveToMemory(format, bitmap, file, flags))
    {
        FreeImage_SeekMemory(file, 0, SEEK_SET);
        loaded = FreeImage_LoadFromMemory(FreeImage_GetFileTypeFromMemory(file, 0), file, 0);
    }
    FreeImage_CloseMemory(file);
    return loaded;
}

int LargestByteDifference(FIBITMAP* a, FIBITMAP* b)
{
    if (!b || FreeImage_GetWidth(a) != FreeImage_GetWidth(b) ||
        FreeImage_GetHeight(a) != FreeImage_GetHeight(b) ||
        FreeImage_GetLine(a) != FreeImage_GetLine(b))
        return 256;
    int largest = 0;
    for (unsigned y = 0; y < FreeImage_GetHeight(a); ++y)
    {
        const BYTE* rowA = FreeImage_GetScanLine(a, int(y));
        const BYTE* rowB = FreeImage_GetScanLine(b, int(y));
        for (unsigned i = 0; i < FreeImage_GetLine(a); ++i)
            largest = std::max(largest, std::abs(rowA[i] - rowB[i]));
    }
    return largest;
}

struct RoundTrip
{
    const char* name;
    FREE_IMAGE_FORMAT format;
    FREE_IMAGE_TYPE type;
    int bitsPerPixel, saveFlags, tolerance;
};

// JPEG at full quality without colour subsampling still rounds in its colour space and its
// transform; everything else keeps each bit.
const RoundTrip kRoundTrips[] = {
    {"Bmp24", FIF_BMP, FIT_BITMAP, 24, 0, 0},
    {"Jpeg24", FIF_JPEG, FIT_BITMAP, 24, 100 | JPEG_SUBSAMPLING_444, 6},
    {"Jpeg8", FIF_JPEG, FIT_BITMAP, 8, 100, 3},
    {"Png32", FIF_PNG, FIT_BITMAP, 32, 0, 0},
    {"Png48", FIF_PNG, FIT_RGB16, 48, 0, 0},
    {"TiffLzw24", FIF_TIFF, FIT_BITMAP, 24, TIFF_LZW, 0},
    {"TiffDeflate48", FIF_TIFF, FIT_RGB16, 48, TIFF_DEFLATE, 0},
    {"TiffJpeg24", FIF_TIFF, FIT_BITMAP, 24, TIFF_JPEG, 6},
    {"Ppm24", FIF_PPMRAW, FIT_BITMAP, 24, 0, 0},
    {"WebpLossless32", FIF_WEBP, FIT_BITMAP, 32, WEBP_LOSSLESS, 0},
    {"Gif8", FIF_GIF, FIT_BITMAP, 8, 0, 0},
};

TEST(CodecLibrary, ReadsBackWhatItWrote)
{
    FreeImageSession session;
    for (const RoundTrip& trip : kRoundTrips)
    {
        SCOPED_TRACE(trip.name);
        FIBITMAP* bitmap = MakeGradient(trip.type, trip.bitsPerPixel);
        FIBITMAP* loaded = ThroughFile(bitmap, trip.format, trip.saveFlags);
        EXPECT_LE(LargestByteDifference(bitmap, loaded), trip.tolerance);
        FreeImage_Unload(loaded);
        FreeImage_Unload(bitmap);
    }
}

TEST(TaskLibrary, VisitsEveryCellOfARangeOnce)
{
    const int rows = 301, columns = 203;
    std::vector<std::atomic<int>> visits(size_t(rows) * columns);
    const oneapi::tbb::blocked_range2d<int> cells(0, rows, 16, 0, columns, 16);
    oneapi::tbb::parallel_for(cells,
                              [&](const oneapi::tbb::blocked_range2d<int>& part)
                              {
                                  for (int y = part.rows().begin(); y < part.rows().end(); ++y)
                                      for (int x = part.cols().begin(); x < part.cols().end(); ++x)
                                          ++visits[size_t(y) * columns + x];
                              });
    for (const std::atomic<int>& count : visits)
        ASSERT_EQ(count, 1);
}

} // namespace
