#pragma once

#include "skin/SkinGlyphs.h"
#include "skin/SkinWindow_win.h"

#include <string>

// Drawing that all paintings share.

// A bitmap in memory to paint on. `dc` is null when there is no memory for it.
struct SkinCanvas
{
    HDC dc = nullptr;
    HBITMAP bitmap = nullptr;
    HGDIOBJ firstBitmap = nullptr;

    SkinCanvas(int width, int height);
    ~SkinCanvas();
    SkinCanvas(const SkinCanvas&) = delete;
    SkinCanvas& operator=(const SkinCanvas&) = delete;
};

// The same with pixels within reach: 32 bits each, 0xAARRGGBB, top row first.
// They are null when there is no memory. GdiFlush has to come between drawing
// and reading them.
struct SkinPixels
{
    HDC dc = nullptr;
    HBITMAP bitmap = nullptr;
    HGDIOBJ firstBitmap = nullptr;
    uint32_t* pixels = nullptr;

    SkinPixels(HDC like, int width, int height);
    ~SkinPixels();
    SkinPixels(const SkinPixels&) = delete;
    SkinPixels& operator=(const SkinPixels&) = delete;
};

// Paints the client area in memory and then shows it in one go, without the
// children's places and without `hole`, when there is one. A painting draws all
// of the client area. False, from it or from here, says that nothing has been
// shown: the previous procedure can still paint.
using SkinPainting = bool (*)(const SkinCall& call, HDC dc, const RECT& client);
bool PaintBuffered(const SkinCall& call, SkinPainting painting, const RECT* hole = nullptr);

// Opaque, by way of a text without letters, which is quicker than a brush.
void FillRectangle(HDC dc, int x, int y, int width, int height, COLORREF colour);
void FillBox(HDC dc, const RECT& box, COLORREF colour);
// One pixel wide, inside of the box.
void FrameBox(HDC dc, const RECT& box, COLORREF colour);

// A filled box with an edge and corners that are softened towards what is
// around.
void DrawRoundedBox(HDC dc, const RECT& box, COLORREF fill, COLORREF edge, COLORREF around);

// Centred in the box; `base` as in ArrowGlyph.
void DrawArrow(HDC dc, const RECT& box, ArrowTo to, COLORREF colour, int base = 7);

// Colour of text and arrows on the face.
COLORREF StateTextColour(bool enabled);

// With smooth edges; middle and radius in pixels.
void DrawDisc(HDC dc, float x, float y, float radius, COLORREF colour);

// Six dots in the lower right corner, by which a window is sized.
void DrawSizeGrip(HDC dc, const RECT& client);

// Text of a window, and the font it wants.
std::wstring TextOf(HWND hwnd);
HFONT FontOf(HWND hwnd);

// Transparent, in that colour; DrawText's flags.
void DrawLabel(HDC dc, HFONT font, const std::wstring& text, RECT box, UINT flags, COLORREF colour);

// What the parent wants behind a static control. The parent may set the
// context's colours as well.
HBRUSH ParentBrush(HWND hwnd, HDC dc);
