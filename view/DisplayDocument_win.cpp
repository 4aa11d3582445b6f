#include "view/DisplayDocument_win.h"

#include <algorithm>
#include <cstring>

#include <objidl.h>

#include <gdiplus.h>

static HBITMAP CreateTopDownBitmap(HDC dc, int width, int height, void** bits)
{
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    info.bmiHeader.biCompression = BI_RGB;
    return CreateDIBSection(dc, &info, DIB_RGB_COLORS, bits, nullptr, 0);
}

static void CreateDisplayBitmap(DisplayDocument* document, uint8_t background)
{
    document->memoryDc = CreateCompatibleDC(nullptr);
    if (!document->memoryDc)
        return;
    void* bits = nullptr;
    document->bitmap =
        CreateTopDownBitmap(document->memoryDc, document->maxWidth, document->maxHeight, &bits);
    if (!document->bitmap)
        return;
    document->previousBitmap = SelectObject(document->memoryDc, document->bitmap);
    const HRGN region = CreateRectRgn(0, 0, document->maxWidth, document->maxHeight);
    SelectClipRgn(document->memoryDc, region); // takes a copy
    DeleteObject(region);

    const int stride = document->maxWidth * 3; // a multiple of four: no gaps between rows
    static_assert(kDisplayWidth * 3 % 4 == 0);
    document->display = {static_cast<uint8_t*>(bits),
                         stride * document->maxHeight,
                         stride,
                         document->maxWidth,
                         document->maxHeight,
                         3,
                         8};
    std::memset(document->display.data, background, size_t(document->display.size));
}

static void StartGdiplus(DisplayDocument* document)
{
    Gdiplus::GdiplusStartupInput input; // version 1, background thread, no debug callback
    if (Gdiplus::GdiplusStartup(&document->gdiplusToken, &input, nullptr) != Gdiplus::Ok)
        document->gdiplusToken = 0;
}

Outcome CreateDisplayDocument(DisplayDocument* document, HWND owner, uint8_t background)
{
    *document = {};
    document->owner = owner;
    document->maxWidth = kDisplayWidth;
    document->maxHeight = kDisplayHeight;
    CreateDisplayBitmap(document, background);
    StartGdiplus(document);
    return FailedIf(!document->bitmap);
}

void ReleaseDisplayDocument(DisplayDocument* document)
{
    if (document->memoryDc)
    {
        if (document->previousBitmap)
            SelectObject(document->memoryDc, document->previousBitmap);
        if (document->bitmap)
            DeleteObject(document->bitmap);
        DeleteDC(document->memoryDc);
    }
    if (document->gdiplusToken)
        Gdiplus::GdiplusShutdown(document->gdiplusToken);
    *document = {};
}

static void FillBackground(HDC dc, int left, int top, int right, int bottom, int grey)
{
    if (right <= left || bottom <= top)
        return;
    const HBRUSH brush = CreateSolidBrush(RGB(grey, grey, grey));
    const RECT rect = {left, top, right, bottom};
    FillRect(dc, &rect, brush);
    DeleteObject(brush);
}

void PaintView(HDC dc, const DisplayDocument& document, const ImageView& view)
{
    const CBxRect<int>& area = view.area;
    const CBxSize<int> size = SizeOfArea(area);
    if (size.cx <= 0 || size.cy <= 0)
        return;
    const int width = document.bitmap ? std::min(size.cx, document.maxWidth) : 0;
    const int height = document.bitmap ? std::min(size.cy, document.maxHeight) : 0;
    if (width > 0)
        BitBlt(dc, area.left, area.top, width, height, document.memoryDc, 0, 0, SRCCOPY);
    const int grey = ViewBackground(view.colourScheme);
    FillBackground(dc, area.left + width, area.top, area.right, area.bottom, grey);
    FillBackground(dc, area.left, area.top + height, area.left + width, area.bottom, grey);
    // The next rendering writes the bits without asking GDI, which may not have read them yet.
    GdiFlush();
}
