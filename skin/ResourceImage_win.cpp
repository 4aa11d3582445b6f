// PNG images are decoded by GDI+, through its flat functions, each of which says whether it has
// failed. What it cannot decode the system may still load as a plain bitmap.

#include "skin/ResourceImage_win.h"

#include "skin/IconPixels.h"
#include "skin/SkinColors_win.h"

#include <cstring>
#include <vector>

#include <objidl.h>

#include <gdiplus.h>

namespace Flat = Gdiplus::DllExports;

// Behind the image, where a bitmap cannot keep its alpha.
static constexpr Gdiplus::ARGB kOpaqueBlack = 0xFF000000;

// Ends the GDI+ image, whether or not a bitmap comes of it.
static HBITMAP TakeBitmap(Gdiplus::GpBitmap* image)
{
    HBITMAP bitmap = nullptr;
    if (Flat::GdipCreateHBITMAPFromBitmap(image, &bitmap, kOpaqueBlack) != Gdiplus::Ok)
        bitmap = nullptr;
    Flat::GdipDisposeImage(image);
    return bitmap;
}

static HBITMAP BitmapOfStream(IStream* stream)
{
    Gdiplus::GpBitmap* image = nullptr;
    if (Flat::GdipCreateBitmapFromStream(stream, &image) != Gdiplus::Ok)
        return nullptr;
    return TakeBitmap(image);
}

static HBITMAP BitmapOfFile(const wchar_t* path)
{
    Gdiplus::GpBitmap* image = nullptr;
    if (Flat::GdipCreateBitmapFromFile(path, &image) != Gdiplus::Ok)
        return nullptr;
    return TakeBitmap(image);
}

// The block outlives the image, because an image may be decoded only when its pixels are asked for.
static HBITMAP BitmapOfBytes(const void* bytes, size_t size)
{
    const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, size);
    if (!block)
        return nullptr;
    HBITMAP bitmap = nullptr;
    if (void* to = GlobalLock(block))
    {
        std::memcpy(to, bytes, size);
        IStream* stream = nullptr;
        if (SUCCEEDED(CreateStreamOnHGlobal(block, FALSE, &stream)))
        {
            bitmap = BitmapOfStream(stream);
            stream->Release();
        }
        GlobalUnlock(block);
    }
    GlobalFree(block);
    return bitmap;
}

static HBITMAP BitmapOfResource(HINSTANCE module, const wchar_t* name)
{
    const HRSRC resource = FindResourceW(module, name, L"PNG");
    const HGLOBAL loaded = resource ? LoadResource(module, resource) : nullptr;
    const void* bytes = loaded ? LockResource(loaded) : nullptr;
    const DWORD size = bytes ? SizeofResource(module, resource) : 0;
    return size > 0 ? BitmapOfBytes(bytes, size) : nullptr;
}

static HBITMAP LoadPlainBitmap(HINSTANCE module, const wchar_t* name)
{
    const UINT where = module ? 0 : LR_LOADFROMFILE;
    return HBITMAP(LoadImageW(module, name, IMAGE_BITMAP, 0, 0, LR_DEFAULTCOLOR | where));
}

HBITMAP LoadResourceImage(HINSTANCE module, const wchar_t* name, bool* flattened)
{
    *flattened = false;
    const HBITMAP bitmap = module ? BitmapOfResource(module, name) : BitmapOfFile(name);
    if (!bitmap)
        return LoadPlainBitmap(module, name);
    return module ? FlattenForLowColour(bitmap, flattened) : bitmap;
}

static int AskScreenBits()
{
    const HDC screen = GetDC(nullptr);
    const int bits = GetDeviceCaps(screen, BITSPIXEL) * GetDeviceCaps(screen, PLANES);
    ReleaseDC(nullptr, screen);
    return bits;
}

HBITMAP FlattenForLowColour(HBITMAP bitmap, bool* flattened)
{
    static const int screenBits = AskScreenBits();
    return screenBits >= 32 ? bitmap : FlattenBitmap(bitmap, flattened);
}

static BITMAPINFO InfoOf(int width, int height, WORD bits)
{
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = bits;
    info.bmiHeader.biCompression = BI_RGB;
    return info;
}

// 32 bits a pixel, packed. A negative height asks for the top row first. Empty on failure.
static std::vector<uint8_t> PixelsOf(HBITMAP bitmap, int width, int height)
{
    const int rows = height < 0 ? -height : height;
    std::vector<uint8_t> pixels(size_t(width) * size_t(rows) * 4);
    BITMAPINFO info = InfoOf(width, height, 32);
    const HDC screen = GetDC(nullptr);
    const int got = GetDIBits(screen, bitmap, 0, UINT(rows), pixels.data(), &info, DIB_RGB_COLORS);
    ReleaseDC(nullptr, screen);
    if (got != rows)
        pixels.clear();
    return pixels;
}

static HBITMAP CreateTopDown(int width, int height, WORD bits, void** data)
{
    const BITMAPINFO info = InfoOf(width, -height, bits);
    return CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, data, nullptr, 0);
}

static HBITMAP FlatCopy(HBITMAP bitmap, const BITMAP& shape)
{
    const std::vector<uint8_t> pixels = PixelsOf(bitmap, shape.bmWidth, -shape.bmHeight);
    void* data = nullptr;
    const HBITMAP flat =
        pixels.empty() ? nullptr : CreateTopDown(shape.bmWidth, shape.bmHeight, 24, &data);
    if (!flat)
        return nullptr;
    BITMAP made = {};
    GetObjectW(flat, sizeof made, &made); // how far its rows are apart
    FlattenIcon(static_cast<uint8_t*>(data), made.bmWidthBytes, pixels.data(), shape.bmWidth,
                shape.bmHeight);
    return flat;
}

HBITMAP FlattenBitmap(HBITMAP bitmap, bool* flattened)
{
    BITMAP shape = {};
    if (*flattened || !GetObjectW(bitmap, sizeof shape, &shape) || shape.bmBitsPixel < 25)
        return bitmap;
    const HBITMAP flat = FlatCopy(bitmap, shape);
    DeleteObject(bitmap);
    *flattened = true;
    return flat;
}

// Bottom row first, as DisableIcon wants its source.
HBITMAP MakeDisabledImage(HBITMAP bitmap)
{
    BITMAP shape = {};
    if (!bitmap || !GetObjectW(bitmap, sizeof shape, &shape))
        return nullptr;
    const std::vector<uint8_t> pixels = PixelsOf(bitmap, shape.bmWidth, shape.bmHeight);
    void* data = nullptr;
    const HBITMAP disabled =
        pixels.empty() ? nullptr : CreateTopDown(shape.bmWidth, shape.bmHeight, 32, &data);
    if (!disabled)
        return nullptr;
    const COLORREF face = SkinColor(COLOR_BTNFACE);
    const IconKeyColour key = {GetRValue(face), GetGValue(face), GetBValue(face)};
    DisableIcon(static_cast<uint8_t*>(data), pixels.data(), shape.bmWidth, shape.bmHeight, key);
    return disabled;
}
