// A check box is an image of the box (SkinImages_win.h) with its text beside
// it. A group box is a frame whose upper edge the title interrupts; the
// controls inside of it are its siblings.

#include "skin/SkinChecks_win.h"

#include "skin/SkinButtonRules.h"
#include "skin/SkinColors_win.h"
#include "skin/SkinDraw_win.h"
#include "skin/SkinImages_win.h"

#include <algorithm>

constexpr int kCheckGap = 4;     // between box and text
constexpr int kGroupIndent = 14; // of a group box's title: in line with the labels below it

static bool HasBoxOnTheRight(const SkinCall& call)
{
    return (call.window.style & BS_LEFTTEXT) != 0;
}

// Where the text of a check box goes: as much as it needs of the room beside
// the box, in the middle from top to bottom.
static RECT PlaceCheckText(HDC dc, const SkinCall& call, const RECT& client, HFONT font,
                           const std::wstring& text, UINT flags)
{
    const int boxWidth = GetSystemMetrics(SM_CXMENUCHECK);
    RECT room = client;
    if (HasBoxOnTheRight(call))
        room.right = std::max<LONG>(0, client.right - boxWidth - kCheckGap);
    else
        room.left = std::max(boxWidth, kCheckImageSize) + kCheckGap;
    RECT needed = room;
    const HGDIOBJ before = SelectObject(dc, font);
    DrawTextW(dc, text.c_str(), int(text.size()), &needed, flags | DT_CALCRECT);
    SelectObject(dc, before);
    const LONG height = needed.bottom - needed.top;
    const LONG width = std::min(needed.right - needed.left, room.right - room.left);
    const LONG left = HasBoxOnTheRight(call) ? room.right - width : room.left;
    const LONG top = (client.bottom - height) / 2;
    return {left, top, left + width, top + height};
}

static bool DrawCheck(const SkinCall& call, HDC dc, const RECT& client)
{
    const std::wstring text = TextOf(call.hwnd);
    const HFONT font = FontOf(call.hwnd);
    const bool lines = (call.window.style & BS_MULTILINE) != 0;
    const bool right = HasBoxOnTheRight(call);
    const UINT flags = (lines ? DT_WORDBREAK : DT_SINGLELINE) | (right ? DT_RIGHT : DT_LEFT);
    const RECT textPlace = PlaceCheckText(dc, call, client, font, text, flags);

    FillRect(dc, &client, ParentBrush(call.hwnd, dc));
    const uint32_t type = ButtonType(call.window.style);
    const bool radio = type == BS_RADIOBUTTON || type == BS_AUTORADIOBUTTON;
    const int state = int(SendMessageW(call.hwnd, BM_GETCHECK, 0, 0));
    const std::wstring image = CheckImageName(radio, SkinIsDark(), state, call.window.enabled);
    const int top = (client.bottom - kCheckImageSize) / 2;
    const int left = right ? client.right - kCheckImageSize : 0;
    if (!DrawCheckImage(dc, left, top, image))
        return false;
    const bool hot = call.window.enabled && HotWindow() == call.hwnd;
    DrawLabel(dc, font, text, textPlace, flags,
              hot ? SkinShade::kTextHot : StateTextColour(call.window.enabled));
    if (GetFocus() == call.hwnd)
    {
        RECT ring = textPlace;
        InflateRect(&ring, 2, 1);
        ring.bottom = std::min(ring.bottom, client.bottom);
        ring.right = std::min(ring.right, client.right);
        FrameBox(dc, ring, SkinShade::kAccent);
    }
    return true;
}

// Space that the title takes in the upper edge: without a title, none but its
// height, since the frame keeps its place.
static SIZE TitleSize(HDC dc, HFONT font, const std::wstring& text)
{
    const HGDIOBJ before = SelectObject(dc, font);
    RECT box = {};
    DrawTextW(dc, text.empty() ? L"X" : text.c_str(), -1, &box, DT_CALCRECT | DT_SINGLELINE);
    SelectObject(dc, before);
    return {text.empty() ? 0 : box.right, box.bottom};
}

// The title without blanks that only hold it off the frame.
static std::wstring GroupTitle(HWND group)
{
    const std::wstring text = TextOf(group);
    const size_t first = text.find_first_not_of(L' ');
    return first == std::wstring::npos ? std::wstring() : text.substr(first);
}

// The upper edge runs through the middle of the title's height.
static bool DrawGroup(const SkinCall& call, HDC dc, const RECT& client)
{
    const std::wstring text = GroupTitle(call.hwnd);
    const HFONT font = FontOf(call.hwnd);
    const SIZE size = TitleSize(dc, font, text);
    FillRect(dc, &client, ParentBrush(call.hwnd, dc));
    RECT frame = client;
    frame.top = size.cy / 2;
    DrawRoundedBox(dc, frame, SkinColor(kSkinFace), SkinColor(kSkinHighlight),
                   SkinColor(kSkinFace));
    if (size.cx == 0)
        return true;
    RECT title = {kGroupIndent, 0, std::min(kGroupIndent + size.cx, client.right), size.cy};
    FillRectangle(dc, title.left - 3, 0, title.right - title.left + 6, size.cy,
                  SkinColor(kSkinFace));
    DrawLabel(dc, font, text, title, DT_SINGLELINE, StateTextColour(call.window.enabled));
    return true;
}

// The controls inside of the frame are siblings, which it must not paint over:
// what lies inside is left out.
static bool PaintGroup(const SkinCall& call)
{
    RECT hole;
    GetClientRect(call.hwnd, &hole);
    const HDC dc = GetDC(call.hwnd);
    const SIZE size = TitleSize(dc, FontOf(call.hwnd), L"");
    ReleaseDC(call.hwnd, dc);
    hole = {hole.left + 1, hole.top + size.cy, hole.right - 1, hole.bottom - 1};
    return PaintBuffered(call, DrawGroup, &hole);
}

bool PaintCheckOrGroup(const SkinCall& call, LRESULT* answer)
{
    *answer = 0;
    switch (ButtonType(call.window.style))
    {
    case BS_CHECKBOX:
    case BS_AUTOCHECKBOX:
    case BS_RADIOBUTTON:
    case BS_AUTORADIOBUTTON:
    case BS_3STATE:
    case BS_AUTO3STATE: return PaintBuffered(call, DrawCheck);
    case BS_GROUPBOX: return PaintGroup(call);
    default: return false;
    }
}
