#include "view/DisplayDocument_win.h"

#include "tests/support/TestFiles.h"

#include <gtest/gtest.h>

#include <cstring>

namespace
{
constexpr uint8_t kFirst = 171; // of the bitmap's bytes

// GDI+ runs while it exists.
struct OpenDocument
{
    DisplayDocument document;
    bool failed;

    OpenDocument() { failed = CreateDisplayDocument(&document, nullptr, kFirst) != Outcome::Done; }
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
