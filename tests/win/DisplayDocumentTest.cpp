#include "picture/ResourceImage_win.h"
#include "view/DisplayDocument_win.h"

#include "tests/support/TestFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace
{
constexpr uint8_t kFirst = 171; // of the bitmap's bytes

// GDI+ runs while it exists.
struct OpenDocument
{
    DisplayDocument document;
    bool failed;

    OpenDocument() { failed = CreateDisplayDocument(&document, nullptr, kFirst); }
    OpenDocument(const OpenDocument&) = delete;
    OpenDocument& operator=(const OpenDocument&) = delete;
    ~OpenDocument() { ReleaseDisplayDocument(&document); }
};

// A bitmap of 32 bits to paint into, top-down, filled with 55.
struct Canvas
{
    HDC dc = CreateCompatibleDC(nullptr);
    HBITMAP bitmap;
    HGDIOBJ previous;
    uint8_t* bits;
    int width;

    Canvas(int canvasWidth, int height) : width(canvasWidth)
    {
        BITMAPINFO info = {};
        info.bmiHeader = {sizeof info.bmiHeader, width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        void* data = nullptr;
        bitmap = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &data, nullptr, 0);
        bits = static_cast<uint8_t*>(data);
        previous = SelectObject(dc, bitmap);
        std::memset(bits, 55, size_t(width) * size_t(height) * 4);
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;
    ~Canvas()
    {
        SelectObject(dc, previous);
        DeleteObject(bitmap);
        DeleteDC(dc);
    }

    Bytes At(int x, int y) const
    {
        GdiFlush();
        const uint8_t* pixel = bits + (size_t(y) * size_t(width) + size_t(x)) * 4;
        return {pixel[0], pixel[1], pixel[2]};
    }
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

TEST(DisplayDocument, HasATopDownBitmapAndIsReleasedOnce)
{
    OpenDocument open;
    ASSERT_FALSE(open.failed);
    const SBxPicBuf& display = open.document.display;
    EXPECT_EQ(display.size, 18000000);
    EXPECT_EQ(display.stride, 9000);
    EXPECT_EQ(display.data[display.size - 1], kFirst);
    uint8_t* pixel = PicRow<uint8_t>(display, 1999) + 3 * 7;
    pixel[0] = 1, pixel[1] = 2, pixel[2] = 3;
    EXPECT_EQ(GetPixel(open.document.memoryDc, 7, 1999), RGB(3, 2, 1));
    RECT clip = {};
    GetClipBox(open.document.memoryDc, &clip);
    EXPECT_EQ(clip.right, 3000);
    EXPECT_EQ(clip.bottom, 2000);

    const HBITMAP bitmap = open.document.bitmap;
    const HDC dc = open.document.memoryDc;
    for (int time = 0; time < 2; ++time)
    {
        ReleaseDisplayDocument(&open.document);
        EXPECT_EQ(GetObjectType(bitmap), 0u);
        EXPECT_EQ(GetObjectType(dc), 0u);
        EXPECT_EQ(open.document.display.data, nullptr);
    }
}

TEST(PaintedView, CoversTheAreaEvenWhereTheBitmapEnds)
{
    OpenDocument open;
    ASSERT_FALSE(open.failed);
    ImageView view;
    view.display = open.document.display;
    SetViewArea(&view, {0, 37, 3040, 2080});
    ASSERT_FALSE(
        VcRenderView(&view, ViewRebuild::Keep, nullptr, ViewShows::Nothing, true, nullptr));
    std::memset(open.document.display.data, 99, 9000); // the top row
    Canvas canvas(3060, 2100);
    PaintView(canvas.dc, open.document, view);
    const Bytes untouched = {55, 55, 55}, row = {99, 99, 99}, background = {190, 190, 190};
    const struct
    {
        int x, y;
        const Bytes& colour;
    } places[] = {{10, 36, untouched},     {0, 37, row},        {2999, 37, row},
                  {3000, 37, background},  {5, 38, background}, {3039, 2079, background},
                  {3040, 1000, untouched}, {5, 2080, untouched}};
    for (const auto& place : places)
        EXPECT_EQ(canvas.At(place.x, place.y), place.colour) << place.x << ", " << place.y;

    view.colourScheme = 2;
    DisplayDocument none = {};
    PaintView(canvas.dc, none, view); // no memory for a bitmap: the background at least
    EXPECT_EQ(canvas.At(0, 37), (Bytes{48, 48, 48}));
    EXPECT_EQ(canvas.At(10, 36), untouched);
    ReleaseImageView(&view);
}

TEST(ResourceImages, KeepTheirAlphaAndTheirRows)
{
    OpenDocument open;
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
    OpenDocument open;
    const HBITMAP bitmap = LoadTestIcon(), disabled = MakeDisabledImage(bitmap);
    // Alpha 99 and 64 are halved; greys follow from the multiplied colours.
    const Bytes expected = {82,  82,  82,  255, 93, 93, 93, 200, 55, 55, 55, 32, //
                            159, 159, 159, 255, 50, 50, 50, 49,  50, 50, 50, 0};
    EXPECT_EQ(PixelsOf(disabled), expected);
    EXPECT_EQ(PixelsOf(bitmap), kIconPixels) << "the image itself stays";
    DeleteObject(disabled);
    const HIMAGELIST images = ImageList_Create(3, 2, ILC_COLOR32, 4, 4);
    EXPECT_EQ(AddDisabledImage(images, bitmap), 0);
    EXPECT_EQ(AddDisabledImage(images, nullptr), -1);
    ImageList_Destroy(images);
    DeleteObject(bitmap);
}

// The button face is recognised by its bytes in crossed order.
TEST(DisabledImages, KeepTheButtonFace)
{
    const COLORREF face = GetSysColor(COLOR_BTNFACE);
    const Bytes key = {GetRValue(face), GetGValue(face), GetBValue(face)};
    Canvas canvas(2, 1); // the second pixel stays 55
    std::copy(key.begin(), key.end(), canvas.bits);
    SelectObject(canvas.dc, canvas.previous);
    const HBITMAP disabled = MakeDisabledImage(canvas.bitmap);
    const Bytes pixels = PixelsOf(disabled);
    ASSERT_EQ(pixels.size(), 8u);
    EXPECT_EQ(Bytes(pixels.begin(), pixels.begin() + 3), key);
    EXPECT_EQ(pixels[4], 73); // 55 * 0.43 + 120 - 70
    DeleteObject(disabled);
}

TEST(FlattenedImages, ReplaceThoseWithAlphaOnce)
{
    OpenDocument open;
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
