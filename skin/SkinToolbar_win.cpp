#include "skin/SkinColors.h"
#include "skin/SkinDraw_win.h"
#include "skin/SkinPaintings_win.h"

#include <commctrl.h>

static HIMAGELIST ImagesOf(HWND bar, bool enabled)
{
    if (!enabled)
        if (const LRESULT grey = SendMessageW(bar, TB_GETDISABLEDIMAGELIST, 0, 0))
            return reinterpret_cast<HIMAGELIST>(grey);
    return reinterpret_cast<HIMAGELIST>(SendMessageW(bar, TB_GETIMAGELIST, 0, 0));
}

static void DrawSeparator(HDC dc, const TBBUTTON& button, const RECT& box)
{
    constexpr LONG kWidestLine = 20; // wider ones hold a control or keep space free
    if (button.idCommand != 0 || box.right - box.left > kWidestLine)
        return;
    const LONG x = (box.left + box.right) / 2;
    FillRectangle(dc, x - 1, box.top + 5, 1, box.bottom - box.top - 10, SkinColor(kSkinShadow));
    FillRectangle(dc, x, box.top + 5, 1, box.bottom - box.top - 10, SkinColor(kSkinHighlight));
}

static void DrawTool(HDC dc, HWND bar, const TBBUTTON& button, RECT box, bool hot)
{
    const bool enabled = (button.fsState & TBSTATE_ENABLED) != 0;
    const bool down = enabled && (button.fsState & (TBSTATE_PRESSED | TBSTATE_CHECKED)) != 0;
    InflateRect(&box, -1, -1);
    if (down)
        DrawPlate(dc, box, SkinShade::kToolDown, SkinShade::kAccent, SkinColor(kSkinFace));
    else if (hot && enabled)
        DrawPlate(dc, box, SkinShade::kToolHot, SkinShade::kEdgeHot, SkinColor(kSkinFace));
    int width = 0, height = 0;
    const HIMAGELIST images = ImagesOf(bar, enabled);
    if (!images || button.iBitmap < 0 || !ImageList_GetIconSize(images, &width, &height))
        return;
    ImageList_Draw(images, LOWORD(button.iBitmap), dc, (box.left + box.right - width) / 2,
                   (box.top + box.bottom - height) / 2, ILD_TRANSPARENT);
}

static bool DrawToolbar(const SkinCall& call, HDC dc, const RECT& client)
{
    const HWND bar = call.hwnd;
    FillBox(dc, client, SkinColor(kSkinFace));
    const int count = int(SendMessageW(bar, TB_BUTTONCOUNT, 0, 0));
    const int hot = int(SendMessageW(bar, TB_GETHOTITEM, 0, 0));
    for (int i = 0; i < count; ++i)
    {
        TBBUTTON button = {};
        RECT box = {};
        SendMessageW(bar, TB_GETBUTTON, WPARAM(i), reinterpret_cast<LPARAM>(&button));
        const bool placed =
            SendMessageW(bar, TB_GETITEMRECT, WPARAM(i), reinterpret_cast<LPARAM>(&box)) != 0;
        if (!placed || (button.fsState & TBSTATE_HIDDEN))
            continue;
        if (button.iString != -1 && button.iString != 0 && !(button.fsStyle & BTNS_SEP))
            return false; // buttons with words keep the system's look
        if (button.fsStyle & BTNS_SEP)
            DrawSeparator(dc, button, box);
        else
            DrawTool(dc, bar, button, box, i == hot);
    }
    return true;
}

bool PaintToolbar(const SkinCall& call, LRESULT* answer)
{
    *answer = 0;
    return PaintBuffered(call, DrawToolbar);
}
