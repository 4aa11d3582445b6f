// A toolbar lets its owner change colours of single items, but not what a
// pressed or lit button looks like. So the bar is painted as a whole:
// background, then each button in the place and the state that the bar tells,
// with its image from the bar's lists.

#include "skin/SkinToolbar_win.h"

#include "skin/SkinColors_win.h"
#include "skin/SkinDraw_win.h"

#include <commctrl.h>

constexpr int kImageGap = 4; // between image, text and the button's edge

// Bars without greyed images show the usual ones.
static HIMAGELIST ImagesOf(HWND bar, bool enabled)
{
    if (!enabled)
        if (const LRESULT grey = SendMessageW(bar, TB_GETDISABLEDIMAGELIST, 0, 0))
            return reinterpret_cast<HIMAGELIST>(grey);
    return reinterpret_cast<HIMAGELIST>(SendMessageW(bar, TB_GETIMAGELIST, 0, 0));
}

// Two lines side by side, dark and light, as if carved.
static void DrawSeparator(HDC dc, const TBBUTTON& button, const RECT& box)
{
    constexpr LONG kWidestLine = 20; // wider ones hold a control or keep space free
    if (button.idCommand != 0 || box.right - box.left > kWidestLine)
        return;
    const LONG x = (box.left + box.right) / 2;
    FillRectangle(dc, x - 1, box.top + 5, 1, box.bottom - box.top - 10, SkinColor(kSkinShadow));
    FillRectangle(dc, x, box.top + 5, 1, box.bottom - box.top - 10, SkinColor(kSkinHighlight));
}

static std::wstring ToolText(HWND bar, const TBBUTTON& button)
{
    const LRESULT length = SendMessageW(bar, TB_GETBUTTONTEXTW, WPARAM(button.idCommand), 0);
    if (length <= 0)
        return {};
    std::wstring text(size_t(length) + 1, L'\0');
    SendMessageW(bar, TB_GETBUTTONTEXTW, WPARAM(button.idCommand),
                 reinterpret_cast<LPARAM>(text.data()));
    text.resize(size_t(length));
    return text;
}

// The text stands below the image, or to its right in bars that are lists.
static void DrawToolText(HDC dc, HWND bar, const std::wstring& text, RECT box, const SIZE& image,
                         bool enabled)
{
    const bool beside = (GetWindowLongPtrW(bar, GWL_STYLE) & TBSTYLE_LIST) != 0;
    if (beside)
        box.left += image.cx + 2 * kImageGap;
    else
        box.top += image.cy + kImageGap;
    DrawLabel(dc, FontOf(bar), text, box,
              beside ? DT_LEFT | DT_VCENTER | DT_SINGLELINE : DT_CENTER | DT_SINGLELINE,
              StateTextColour(enabled));
}

static void DrawTool(HDC dc, HWND bar, const TBBUTTON& button, RECT box, bool hot)
{
    const bool enabled = (button.fsState & TBSTATE_ENABLED) != 0;
    const bool down = enabled && (button.fsState & (TBSTATE_PRESSED | TBSTATE_CHECKED)) != 0;
    InflateRect(&box, -1, -1);
    if (down)
        DrawRoundedBox(dc, box, SkinShade::kToolDown, SkinShade::kAccent, SkinColor(kSkinFace));
    else if (hot && enabled)
        DrawRoundedBox(dc, box, SkinShade::kToolHot, SkinShade::kEdgeHot, SkinColor(kSkinFace));
    int width = 0, height = 0;
    const HIMAGELIST images = ImagesOf(bar, enabled);
    if (!images || button.iBitmap < 0 || !ImageList_GetIconSize(images, &width, &height))
        return;
    const std::wstring text = ToolText(bar, button);
    // The image stands in the middle, unless there is a text to share the room
    // with.
    int left = (box.left + box.right - width) / 2, top = (box.top + box.bottom - height) / 2;
    if (!text.empty() && (GetWindowLongPtrW(bar, GWL_STYLE) & TBSTYLE_LIST))
        left = box.left + kImageGap;
    else if (!text.empty())
        top = box.top + kImageGap;
    if (!text.empty())
        DrawToolText(dc, bar, text, box, {width, height}, enabled);
    // The upper half of the number says which of several lists; the program has
    // one.
    ImageList_Draw(images, LOWORD(button.iBitmap), dc, left, top, ILD_TRANSPARENT);
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
