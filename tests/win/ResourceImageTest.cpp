// Images of the user interface as bitmaps of the system.

#include "skin/ResourceImage_win.h"

#include "tests/support/TestFiles.h"

#include <gtest/gtest.h>

#include <objidl.h>

#include <gdiplus.h>

namespace
{
// GDI+ runs while it exists.
class GdiplusSession
{
public:
    GdiplusSession()
    {
        const Gdiplus::GdiplusStartupInput input;
        EXPECT_EQ(Gdiplus::GdiplusStartup(&token, &input, nullptr), Gdiplus::Ok);
    }
    ~GdiplusSession() { Gdiplus::GdiplusShutdown(token); }
    GdiplusSession(const GdiplusSession&) = delete;
    GdiplusSession& operator=(const GdiplusSession&) = delete;

private:
    ULONG_PTR token = 0;
};

// Pixels as blue, green, red, alpha, top row first; empty when there is no bitmap.
Bytes PixelsOf(HBITMAP bitmap, int* bits = nullptr)
{
    BITMAP shape = {};
    if (!bitmap || !GetObjectW(bitmap, sizeof shape, &shape))
        return {};
    if (bits)
        *bits = shape.bmBitsPixel;
    Bytes pixels(size_t(shape.bmWidth) * size_t(shape.bmHeight) * 4);
    BITMAPINFO info = {};
    info.bmiHeader = {
        sizeof info.bmiHeader, shape.bmWidth, -shape.bmHeight, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    const HDC screen = GetDC(nullptr);
    GetDIBits(screen, bitmap, 0, UINT(shape.bmHeight), pixels.data(), &info, DIB_RGB_COLORS);
    ReleaseDC(nullptr, screen);
    return pixels;
}

// TESTICON with its colours multiplied by alpha, as bitmaps with alpha have them.
const Bytes kIconPixels = {0,   0,   255, 255, 0, 200, 0, 200, 64, 0, 0, 64, //
                           255, 255, 255, 255, 0, 0,   0, 99,  0,  0, 0, 0};

HBITMAP LoadTestIcon()
{
    bool flattened = true;
    return LoadResourceImage(GetModuleHandleW(nullptr), L"TESTICON", &flattened);
}
} // namespace

TEST(ResourceImages, KeepTheirAlphaAndTheirRows)
{
    const GdiplusSession gdiplus;
    bool flattened = true;
    int bits = 0;
    HBITMAP bitmap = LoadResourceImage(GetModuleHandleW(nullptr), L"TestIcon", &flattened);
    EXPECT_EQ(PixelsOf(bitmap, &bits), kIconPixels);
    EXPECT_EQ(bits, 32);
    EXPECT_FALSE(flattened);
    DeleteObject(bitmap);
    for (const wchar_t* name : {L"NOSUCHIMAGE", L"BROKEN"})
        EXPECT_EQ(LoadResourceImage(GetModuleHandleW(nullptr), name, &flattened), nullptr);
    EXPECT_EQ(MakeDisabledImage(nullptr), nullptr);

    // From a file when there is no module.
    const HRSRC resource = FindResourceW(nullptr, L"TESTICON", L"PNG");
    const auto* from = static_cast<const uint8_t*>(LockResource(LoadResource(nullptr, resource)));
    const TempFolder folder;
    folder.Write("icon.png", Bytes(from, from + SizeofResource(nullptr, resource)));
    bitmap = LoadResourceImage(nullptr, (folder.path / L"icon.png").wstring().c_str(), &flattened);
    EXPECT_EQ(PixelsOf(bitmap), kIconPixels);
    DeleteObject(bitmap);
}

TEST(DisabledImages, AreGreyAndStandUpright)
{
    const GdiplusSession gdiplus;
    const HBITMAP bitmap = LoadTestIcon(), disabled = MakeDisabledImage(bitmap);
    // Alpha 99 and 64 are halved; greys follow from the multiplied colours.
    const Bytes expected = {82,  82,  82,  255, 93, 93, 93, 200, 55, 55, 55, 32, //
                            159, 159, 159, 255, 50, 50, 50, 49,  50, 50, 50, 0};
    EXPECT_EQ(PixelsOf(disabled), expected);
    EXPECT_EQ(PixelsOf(bitmap), kIconPixels) << "the image itself stays";
    DeleteObject(disabled);
    DeleteObject(bitmap);
}

// The button face is recognised by its bytes in crossed order.
TEST(DisabledImages, KeepTheButtonFace)
{
    const COLORREF face = GetSysColor(COLOR_BTNFACE);
    const Bytes key = {GetRValue(face), GetGValue(face), GetBValue(face)};
    const Bytes source = {key[0], key[1], key[2], 255, 55, 55, 55, 255};
    const HBITMAP bitmap = CreateBitmap(2, 1, 1, 32, source.data());
    const HBITMAP disabled = MakeDisabledImage(bitmap);
    const Bytes pixels = PixelsOf(disabled);
    ASSERT_EQ(pixels.size(), 8u);
    EXPECT_EQ(Bytes(pixels.begin(), pixels.begin() + 3), key);
    EXPECT_EQ(pixels[4], 73); // 55 * 0.43 + 120 - 70
    DeleteObject(disabled);
    DeleteObject(bitmap);
}

TEST(FlattenedImages, ReplaceThoseWithAlphaOnce)
{
    const GdiplusSession gdiplus;
    const HBITMAP bitmap = LoadTestIcon();
    bool flattened = false;
    EXPECT_EQ(FlattenForLowColour(bitmap, &flattened), bitmap) << "the screen has 32 bits";
    EXPECT_FALSE(flattened);
    const HBITMAP flat = FlattenBitmap(bitmap, &flattened);
    EXPECT_TRUE(flattened);
    EXPECT_EQ(GetObjectType(bitmap), 0u) << "the old one is gone";
    int bits = 0;
    Bytes pixels = PixelsOf(flat, &bits);
    EXPECT_EQ(bits, 24);
    for (size_t i = 3; i < pixels.size(); i += 4)
        pixels[i] = 0;                                                             // meaningless
    EXPECT_EQ(pixels, (Bytes{0,   0,   255, 0, 0,   200, 0,   0, 192, 192, 192, 0, //
                             255, 255, 255, 0, 192, 192, 192, 0, 192, 192, 192, 0}));

    EXPECT_EQ(FlattenBitmap(flat, &flattened), flat);
    flattened = false;
    EXPECT_EQ(FlattenBitmap(flat, &flattened), flat) << "24 bits have no alpha";
    EXPECT_FALSE(flattened);
    DeleteObject(flat);
}
