#include "skin/SkinImages_win.h"

#include "skin/ResourceImage_win.h"

#include <map>

static std::map<std::wstring, HBITMAP> g_images;

static HBITMAP CheckImage(const std::wstring& name)
{
    const auto found = g_images.find(name);
    if (found != g_images.end())
        return found->second;
    bool flattened = false;
    const HBITMAP bitmap = LoadResourceImage(GetModuleHandleW(nullptr), name.c_str(), &flattened);
    if (bitmap)
        g_images[name] = bitmap; // a failure is tried again next time
    return bitmap;
}

bool DrawCheckImage(HDC dc, int x, int y, const std::wstring& name)
{
    const HBITMAP bitmap = CheckImage(name);
    BITMAP shape = {};
    if (!bitmap || !GetObjectW(bitmap, sizeof shape, &shape))
        return false;
    const HDC source = CreateCompatibleDC(dc);
    const HGDIOBJ before = SelectObject(source, bitmap);
    // On screens of few colours the image has been flattened, and has no alpha to
    // blend with.
    BOOL drawn;
    if (shape.bmBitsPixel == 32)
        drawn = GdiAlphaBlend(dc, x, y, shape.bmWidth, shape.bmHeight, source, 0, 0, shape.bmWidth,
                              shape.bmHeight, {AC_SRC_OVER, 0, 255, AC_SRC_ALPHA});
    else
        drawn = BitBlt(dc, x, y, shape.bmWidth, shape.bmHeight, source, 0, 0, SRCCOPY);
    SelectObject(source, before);
    DeleteDC(source);
    return drawn != FALSE;
}

void ReleaseCheckImages()
{
    for (const auto& [name, bitmap] : g_images)
        DeleteObject(bitmap);
    g_images.clear();
}
