#include "files/ImageCodec.h"

#include "base/SystemFiles.h"
#include "files/Formats.h"

#include <FreeImage.h>

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <mutex>

#ifndef _WIN32
#include <dlfcn.h>
#endif

// FreeImage keeps the bottom row first and pads rows to four bytes, pictures do neither. 8-bit
// colours are blue, green, red on both sides; 16-bit colours are red, green, blue in FreeImage and
// change places while a row is copied, so that every picture is read and written in one pass.

struct BitmapKind
{
    FREE_IMAGE_TYPE type;
    unsigned bitsPerPixel;
    int samples; // per pixel, alpha included
    int bits;    // per sample
};

// Type and bits per pixel together tell a kind: floats and 32-bit integers have as many bits per
// pixel as 8-bit colour with alpha, and 16 bits per pixel may be packed 5-6-5 colour.
static const BitmapKind kKinds[] = {
    {FIT_BITMAP, 8, 1, 8},   {FIT_BITMAP, 24, 3, 8}, {FIT_BITMAP, 32, 4, 8},
    {FIT_UINT16, 16, 1, 16}, {FIT_RGB16, 48, 3, 16}, {FIT_RGBA16, 64, 4, 16},
};

static const BitmapKind* KindOfBitmap(FIBITMAP* bitmap)
{
    for (const BitmapKind& kind : kKinds)
        if (kind.type == FreeImage_GetImageType(bitmap) &&
            kind.bitsPerPixel == FreeImage_GetBPP(bitmap))
            return &kind;
    return nullptr;
}

static const BitmapKind* KindOfPicture(const SBxPicBuf& picture, bool withAlpha)
{
    const int samples = picture.components + (withAlpha && picture.components == 3 ? 1 : 0);
    for (const BitmapKind& kind : kKinds)
        if (kind.samples == samples && kind.bits == picture.bitsPerComponent)
            return &kind;
    return nullptr;
}

// The formats are the same on every system, and FreeImage goes by the contents of a file whatever
// its name: what has no row stays off. So does camera raw, which has one: as long as it is enabled,
// every TIFF file and every unknown one goes through the raw library. ImageReader.cpp chooses it by
// itself.
static void EnableFormats()
{
    for (int code = 0; code < FreeImage_GetFIFCount(); ++code)
    {
        const FormatRow* row = FormatOfCode(code);
        FreeImage_SetPluginEnabled(FREE_IMAGE_FORMAT(code), row && row->id != kFormatRaw);
    }
}

// FreeImage drops its own messages when nobody asks for them. The TIFF library below it prints
// unknown tags and damaged files on standard error unless told otherwise. It comes along with
// FreeImage, without headers of its own: inside the program on Windows, else as a shared library
// that the loader has in memory already.
using TiffHandler = void (*)(const char*, const char*, va_list);
#ifdef _WIN32
extern "C" TiffHandler TIFFSetErrorHandler(TiffHandler);
extern "C" TiffHandler TIFFSetWarningHandler(TiffHandler);

static void SilenceTiff()
{
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);
}
#else
static void SilenceTiff()
{
    for (const char* name : {"TIFFSetErrorHandler", "TIFFSetWarningHandler"})
    {
        const auto set = reinterpret_cast<TiffHandler (*)(TiffHandler)>(dlsym(RTLD_DEFAULT, name));
        if (set)
            set(nullptr);
    }
}
#endif

void InitImageLibrary()
{
    static std::once_flag once;
    std::call_once(once,
                   []
                   {
#ifdef FREEIMAGE_LIB
                       FreeImage_Initialise(TRUE); // the shared library does this by itself
#endif
                       EnableFormats();
                       SilenceTiff();
                   });
}

BitmapFit FitOfBitmap(FIBITMAP* bitmap)
{
    const BitmapKind* kind = KindOfBitmap(bitmap);
    if (!kind)
        return BitmapFit::KindNotSupported;
    if (FreeImage_HasPixels(bitmap))
    {
        const FREE_IMAGE_COLOR_TYPE colors = FreeImage_GetColorType(bitmap);
        if (colors == FIC_PALETTE || colors == FIC_CMYK)
            return BitmapFit::KindNotSupported;
    }
    const int width = int(FreeImage_GetWidth(bitmap));
    const int height = int(FreeImage_GetHeight(bitmap));
    const int64_t bytes = PictureBytes(width, height, std::min(kind->samples, 3), kind->bits);
    if (bytes < 0)
        return BitmapFit::TooLarge;
    // While a file is being read, the bitmap and the pair are in memory side by side.
    const int64_t pairBytes = bytes / std::min(kind->samples, 3) * kind->samples;
    return 2 * pairBytes <= PhysicalMemoryBytes() ? BitmapFit::Fits : BitmapFit::TooLarge;
}

// Row y of a bitmap, counted from the top.
static BYTE* BitmapRow(FIBITMAP* bitmap, int y)
{
    return FreeImage_GetScanLine(bitmap, int(FreeImage_GetHeight(bitmap)) - 1 - y);
}

static void CopyGrey8(SBxPicBuf* picture, FIBITMAP* bitmap)
{
    // The palette of a grey bitmap is a ramp, either upwards or downwards.
    const RGBQUAD* palette = FreeImage_GetPalette(bitmap);
    const bool direct = !palette || FreeImage_GetColorType(bitmap) == FIC_MINISBLACK;
    for (int y = 0; y < picture->height; ++y)
    {
        const BYTE* src = BitmapRow(bitmap, y);
        uint8_t* dst = PicRow<uint8_t>(*picture, y);
        if (direct)
            std::memcpy(dst, src, size_t(picture->width));
        else
            for (int x = 0; x < picture->width; ++x)
                dst[x] = palette[src[x]].rgbRed;
    }
}

static void CopyGrey16(SBxPicBuf* picture, FIBITMAP* bitmap)
{
    const unsigned flip = FreeImage_GetColorType(bitmap) == FIC_MINISWHITE ? 0xFFFFu : 0u;
    for (int y = 0; y < picture->height; ++y)
    {
        const WORD* src = reinterpret_cast<const WORD*>(BitmapRow(bitmap, y));
        uint16_t* dst = PicRow<uint16_t>(*picture, y);
        for (int x = 0; x < picture->width; ++x)
            dst[x] = uint16_t(src[x] ^ flip);
    }
}

static void CopyColour8(SBxPicBuf* picture, FIBITMAP* bitmap)
{
    for (int y = 0; y < picture->height; ++y)
        std::memcpy(PicRow<uint8_t>(*picture, y), BitmapRow(bitmap, y), size_t(picture->width) * 3);
}

static void CopyColourAlpha8(SBxPicBuf* picture, SBxPicBuf* alpha, FIBITMAP* bitmap)
{
    for (int y = 0; y < picture->height; ++y)
    {
        const BYTE* src = BitmapRow(bitmap, y);
        uint8_t* dst = PicRow<uint8_t>(*picture, y);
        uint8_t* dstAlpha = PicRow<uint8_t>(*alpha, y);
        for (int x = 0; x < picture->width; ++x)
        {
            dst[3 * x] = src[4 * x];
            dst[3 * x + 1] = src[4 * x + 1];
            dst[3 * x + 2] = src[4 * x + 2];
            dstAlpha[x] = src[4 * x + 3];
        }
    }
}

template <typename Pixel> // FIRGB16 or FIRGBA16
static void CopyColour16(SBxPicBuf* picture, FIBITMAP* bitmap)
{
    for (int y = 0; y < picture->height; ++y)
    {
        const Pixel* src = reinterpret_cast<const Pixel*>(BitmapRow(bitmap, y));
        uint16_t* dst = PicRow<uint16_t>(*picture, y);
        for (int x = 0; x < picture->width; ++x)
        {
            dst[3 * x] = src[x].blue;
            dst[3 * x + 1] = src[x].green;
            dst[3 * x + 2] = src[x].red;
        }
    }
}

static void CopyAlpha16(SBxPicBuf* alpha, FIBITMAP* bitmap)
{
    for (int y = 0; y < alpha->height; ++y)
    {
        const FIRGBA16* src = reinterpret_cast<const FIRGBA16*>(BitmapRow(bitmap, y));
        uint16_t* dst = PicRow<uint16_t>(*alpha, y);
        for (int x = 0; x < alpha->width; ++x)
            dst[x] = src[x].alpha;
    }
}

bool PictureFromBitmap(FIBITMAP* bitmap, SBxPicBuf* picture, SBxPicBuf* alpha)
{
    CBxPicBufAPI::DoneHeap(picture);
    CBxPicBufAPI::DoneHeap(alpha);
    if (!bitmap)
        return false;
    if (!FreeImage_HasPixels(bitmap) || FitOfBitmap(bitmap) != BitmapFit::Fits)
        return true;

    const BitmapKind& kind = *KindOfBitmap(bitmap);
    const int width = int(FreeImage_GetWidth(bitmap));
    const int height = int(FreeImage_GetHeight(bitmap));
    CBxPicBufAPI::ReinitHeap(picture, width, height, std::min(kind.samples, 3), kind.bits);
    if (kind.samples == 4)
        CBxPicBufAPI::ReinitHeap(alpha, width, height, 1, kind.bits);
    if (!picture->data || (kind.samples == 4 && !alpha->data))
    {
        CBxPicBufAPI::DoneHeap(picture);
        CBxPicBufAPI::DoneHeap(alpha);
        return true;
    }

    switch (kind.samples * 100 + kind.bits)
    {
    case 108: CopyGrey8(picture, bitmap); break;
    case 116: CopyGrey16(picture, bitmap); break;
    case 308: CopyColour8(picture, bitmap); break;
    case 316: CopyColour16<FIRGB16>(picture, bitmap); break;
    case 408: CopyColourAlpha8(picture, alpha, bitmap); break;
    case 416:
        CopyColour16<FIRGBA16>(picture, bitmap);
        CopyAlpha16(alpha, bitmap);
        break;
    }
    return false;
}

// One row of `T` samples into a bitmap row of `Samples` per pixel. Positions of blue, green and red
// in the bitmap's pixel: 0 1 2 for 8 bits, 2 1 0 for 16.
template <typename T, int Samples, int Blue>
static void FillRow(T* dst, const T* src, const T* alpha, int width)
{
    for (int x = 0; x < width; ++x)
    {
        dst[Samples * x + Blue] = src[3 * x];
        dst[Samples * x + 1] = src[3 * x + 1];
        dst[Samples * x + (2 - Blue)] = src[3 * x + 2];
        if (Samples == 4)
            dst[Samples * x + 3] = alpha[x];
    }
}

FIBITMAP* BitmapFromPicture(const SBxPicBuf& picture, const SBxPicBuf* alpha)
{
    InitImageLibrary();
    const bool withAlpha = alpha && alpha->data && picture.components == 3;
    const BitmapKind* kind = KindOfPicture(picture, withAlpha);
    if (!picture.data || !kind)
        return nullptr;
    FIBITMAP* bitmap = FreeImage_AllocateT(kind->type, picture.width, picture.height,
                                           int(kind->bitsPerPixel), 0, 0, 0);
    if (!bitmap)
        return nullptr;

    const size_t packedBytes = size_t(picture.width) * size_t(picture.components * kind->bits / 8);
    for (int y = 0; y < picture.height; ++y)
    {
        BYTE* dst8 = BitmapRow(bitmap, y);
        WORD* dst16 = reinterpret_cast<WORD*>(dst8);
        const uint8_t* src8 = PicRow<uint8_t>(picture, y);
        const uint16_t* src16 = PicRow<uint16_t>(picture, y);
        if (withAlpha && kind->bits == 8)
            FillRow<uint8_t, 4, 0>(dst8, src8, PicRow<uint8_t>(*alpha, y), picture.width);
        else if (withAlpha)
            FillRow<uint16_t, 4, 2>(dst16, src16, PicRow<uint16_t>(*alpha, y), picture.width);
        else if (kind->samples == 3 && kind->bits == 16)
            FillRow<uint16_t, 3, 2>(dst16, src16, nullptr, picture.width);
        else
            std::memcpy(dst8, src8, packedBytes);
    }
    return bitmap;
}
