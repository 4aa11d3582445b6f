// Everything is drawn without smoothing but the disc, in whole pixels and
// one-pixel lines, so that a control looks the same at every place. Nothing is
// scaled with the screen's resolution: the system enlarges the window as a
// whole.

#include "skin/SkinDraw_win.h"

#include "skin/SkinColors_win.h"

SkinCanvas::SkinCanvas(int width, int height)
{
    const HDC screen = GetDC(nullptr);
    dc = CreateCompatibleDC(screen);
    bitmap = dc ? CreateCompatibleBitmap(screen, width, height) : nullptr;
    ReleaseDC(nullptr, screen);
    if (bitmap)
        firstBitmap = SelectObject(dc, bitmap);
    if (firstBitmap)
        return;
    DeleteDC(dc);
    dc = nullptr;
}

SkinCanvas::~SkinCanvas()
{
    if (dc)
        SelectObject(dc, firstBitmap);
    DeleteDC(dc);
    DeleteObject(bitmap);
}

SkinPixels::SkinPixels(HDC like, int width, int height) : dc(CreateCompatibleDC(like))
{
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof info.bmiHeader, width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    bitmap = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (bitmap)
        firstBitmap = SelectObject(dc, bitmap);
    if (firstBitmap)
        pixels = static_cast<uint32_t*>(bits);
}

SkinPixels::~SkinPixels()
{
    if (firstBitmap)
        SelectObject(dc, firstBitmap);
    DeleteDC(dc);
    DeleteObject(bitmap);
}

static void ExcludeBox(HDC dc, const RECT& box)
{
    ExcludeClipRect(dc, box.left, box.top, box.right, box.bottom);
}

static void ExcludeChildren(HDC dc, HWND hwnd)
{
    for (HWND child = GetWindow(hwnd, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
    {
        RECT rect;
        if (!IsWindowVisible(child) || !GetWindowRect(child, &rect))
            continue;
        MapWindowPoints(nullptr, hwnd, reinterpret_cast<POINT*>(&rect), 2);
        ExcludeBox(dc, rect);
    }
}

// Children lie inside of their parent without being cut out of it (not all have
// WS_CLIPCHILDREN).
static void ShowCanvas(HDC dc, const SkinCall& call, const SkinCanvas& canvas, const RECT& client,
                       const RECT* hole)
{
    const int saved = SaveDC(dc);
    ExcludeChildren(dc, call.hwnd);
    if (hole)
        ExcludeBox(dc, *hole);
    BitBlt(dc, 0, 0, client.right, client.bottom, canvas.dc, 0, 0, SRCCOPY);
    RestoreDC(dc, saved);
}

bool PaintBuffered(const SkinCall& call, SkinPainting painting, const RECT* hole)
{
    RECT client;
    if (!GetClientRect(call.hwnd, &client) || client.right <= 0 || client.bottom <= 0)
        return false;
    const SkinCanvas canvas(client.right, client.bottom);
    // On the canvas first: BeginPaint would end the need to paint, and a painting
    // that fails would leave the previous procedure nothing to do.
    if (!canvas.dc || !painting(call, canvas.dc, client))
        return false;
    // Whoever wants a picture of the control (WM_PRINTCLIENT) brings the context
    // along.
    if (const HDC given = reinterpret_cast<HDC>(call.wParam))
    {
        ShowCanvas(given, call, canvas, client, hole);
        return true;
    }
    PAINTSTRUCT paint;
    if (const HDC dc = BeginPaint(call.hwnd, &paint))
        ShowCanvas(dc, call, canvas, client, hole);
    EndPaint(call.hwnd, &paint);
    return true;
}

void FillRectangle(HDC dc, int x, int y, int width, int height, COLORREF colour)
{
    const RECT box = {x, y, x + width, y + height};
    const COLORREF before = SetBkColor(dc, colour);
    ExtTextOutW(dc, 0, 0, ETO_OPAQUE, &box, L"", 0, nullptr);
    SetBkColor(dc, before);
}

void FillBox(HDC dc, const RECT& box, COLORREF colour)
{
    FillRectangle(dc, box.left, box.top, box.right - box.left, box.bottom - box.top, colour);
}

void FrameBox(HDC dc, const RECT& box, COLORREF colour)
{
    const int width = box.right - box.left, height = box.bottom - box.top;
    FillRectangle(dc, box.left, box.top, width, 1, colour);
    FillRectangle(dc, box.left, box.bottom - 1, width, 1, colour);
    FillRectangle(dc, box.left, box.top, 1, height, colour);
    FillRectangle(dc, box.right - 1, box.top, 1, height, colour);
}

static COLORREF Mix(COLORREF a, COLORREF b)
{
    return RGB((GetRValue(a) + GetRValue(b)) / 2, (GetGValue(a) + GetGValue(b)) / 2,
               (GetBValue(a) + GetBValue(b)) / 2);
}

void DrawRoundedBox(HDC dc, const RECT& box, COLORREF fill, COLORREF edge, COLORREF around)
{
    FillBox(dc, box, fill);
    FrameBox(dc, box, edge);
    for (const LONG x : {box.left, box.right - 1})
        for (const LONG y : {box.top, box.bottom - 1})
            SetPixelV(dc, x, y, Mix(edge, around));
}

void DrawArrow(HDC dc, const RECT& box, ArrowTo to, COLORREF colour, int base)
{
    const Glyph glyph = ArrowGlyph(to, base);
    const int left = (box.left + box.right - glyph.width) / 2;
    const int top = (box.top + box.bottom - glyph.height) / 2;
    for (const GlyphLine& line : glyph.lines)
        FillRectangle(dc, left + line.x, top + line.y, glyph.vertical ? 1 : line.length,
                      glyph.vertical ? line.length : 1, colour);
}

COLORREF StateTextColour(bool enabled)
{
    return SkinColor(enabled ? kSkinText : kSkinGreyText);
}

// As alpha blending wants it: colours multiplied by alpha.
static uint32_t PremultipliedPixel(COLORREF colour, float coverage)
{
    const auto part = [coverage](int value) { return uint32_t(float(value) * coverage + 0.5f); };
    return part(255) << 24 | part(GetRValue(colour)) << 16 | part(GetGValue(colour)) << 8 |
           part(GetBValue(colour));
}

// The disc's square is blended over what is there already, pixel by pixel by
// how much of it the disc covers.
void DrawDisc(HDC dc, float x, float y, float radius, COLORREF colour)
{
    const int left = int(x - radius) - 1, top = int(y - radius) - 1;
    const int side = int(2 * radius) + 4;
    const SkinPixels disc(dc, side, side);
    if (!disc.pixels)
        return;
    uint32_t* pixel = disc.pixels;
    for (int row = top; row < top + side; ++row)
        for (int column = left; column < left + side; ++column)
            *pixel++ =
                PremultipliedPixel(colour, DiscCoverage(float(column) - x, float(row) - y, radius));
    GdiAlphaBlend(dc, left, top, side, side, disc.dc, 0, 0, side, side,
                  {AC_SRC_OVER, 0, 255, AC_SRC_ALPHA});
}

void DrawSizeGrip(HDC dc, const RECT& client)
{
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column <= row; ++column)
            FillRectangle(dc, client.right - 5 - 4 * column, client.bottom - 13 + 4 * row, 2, 2,
                          SkinColor(kSkinHighlight));
}

std::wstring TextOf(HWND hwnd)
{
    std::wstring text(size_t(GetWindowTextLengthW(hwnd)) + 1, L'\0');
    text.resize(size_t(GetWindowTextW(hwnd, text.data(), int(text.size()))));
    return text;
}

HFONT FontOf(HWND hwnd)
{
    const HFONT font = reinterpret_cast<HFONT>(SendMessageW(hwnd, WM_GETFONT, 0, 0));
    return font ? font : static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
}

void DrawLabel(HDC dc, HFONT font, const std::wstring& text, RECT box, UINT flags, COLORREF colour)
{
    const HGDIOBJ previous = SelectObject(dc, font);
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, colour);
    DrawTextW(dc, text.c_str(), int(text.size()), &box, flags);
    SelectObject(dc, previous);
}

// Asked as a static control asks. A parent without an answer gets the face.
HBRUSH ParentBrush(HWND hwnd, HDC dc)
{
    const LRESULT brush =
        SendMessageW(GetParent(hwnd), WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(dc),
                     reinterpret_cast<LPARAM>(hwnd));
    return brush ? reinterpret_cast<HBRUSH>(brush) : SkinBrush(kSkinFace);
}
