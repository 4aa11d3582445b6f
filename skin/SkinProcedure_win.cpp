// Which painting answers which message of which class. What has no row, or whose painting fails,
// goes to the procedure that the skin stands before.

#include "skin/SkinMenus_win.h"
#include "skin/SkinPaintings_win.h"
#include "skin/SkinSubclass_win.h"

#include <commctrl.h>

// The painting covers everything: no background, which would flicker.
static bool KeepBackground(const SkinCall&, LRESULT* answer)
{
    *answer = 1;
    return true;
}

// Controls draw themselves at once when their text, state or focus changes. They are kept from it,
// and painted soon.
static bool ChangeQuietly(const SkinCall& call, LRESULT* answer)
{
    const bool visible = (call.window.style & WS_VISIBLE) != 0;
    if (visible)
        DefWindowProcW(call.hwnd, WM_SETREDRAW, FALSE, 0);
    *answer = CallPrevious(call.hwnd, call.message, call.wParam, call.lParam);
    if (visible && IsWindow(call.hwnd))
        DefWindowProcW(call.hwnd, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(call.hwnd, nullptr, FALSE);
    return true;
}

static const struct
{
    SkinClass kind;
    UINT message;
    SkinHandler handler;
} kHandlers[] = {
    {SkinClass::Button, WM_PAINT, PaintButton},
    {SkinClass::Button, WM_ERASEBKGND, KeepBackground},
    {SkinClass::Button, WM_GETDLGCODE, AnswerButtonDialogCode},
    {SkinClass::Button, BM_SETSTYLE, SetButtonStyle},
    {SkinClass::Button, WM_SETTEXT, ChangeQuietly},
    {SkinClass::Button, WM_ENABLE, ChangeQuietly},
    {SkinClass::Button, WM_SETFOCUS, ChangeQuietly},
    {SkinClass::Button, WM_KILLFOCUS, ChangeQuietly},
    {SkinClass::Button, BM_SETCHECK, ChangeQuietly},
    {SkinClass::Button, BM_SETSTATE, ChangeQuietly},
    {SkinClass::Any, WM_DRAWITEM, DrawButtonItem},

    {SkinClass::Static, WM_PAINT, PaintStatic},
    {SkinClass::Static, WM_ERASEBKGND, KeepBackground},
    {SkinClass::Static, WM_SETTEXT, ChangeQuietly},
    {SkinClass::Static, WM_ENABLE, ChangeQuietly},
    {SkinClass::Static, WM_NCPAINT, PaintFrame},

    {SkinClass::Edit, WM_PAINT, PaintDisabledEdit},
    {SkinClass::Edit, WM_NCPAINT, PaintFrame},
    {SkinClass::ListBox, WM_NCPAINT, PaintFrame},
    {SkinClass::ComboList, WM_NCPAINT, PaintFrame},
    {SkinClass::TreeView, WM_NCPAINT, PaintFrame},
    {SkinClass::ListView, WM_NCPAINT, PaintFrame},
    {SkinClass::Progress, WM_NCPAINT, PaintFrame},
    {SkinClass::Toolbar, WM_NCPAINT, PaintFrame},

    {SkinClass::ComboBox, WM_PAINT, PaintCombo},
    {SkinClass::ComboBox, WM_ERASEBKGND, KeepBackground},
    {SkinClass::ComboBox, WM_ENABLE, ChangeQuietly},
    {SkinClass::ComboBox, WM_SETFOCUS, ChangeQuietly},
    {SkinClass::ComboBox, WM_KILLFOCUS, ChangeQuietly},
    {SkinClass::ComboBox, CB_SETCURSEL, ChangeQuietly},

    {SkinClass::Header, WM_PAINT, PaintHeader},
    {SkinClass::Header, WM_ERASEBKGND, KeepBackground},
    {SkinClass::Tab, WM_PAINT, PaintTab},
    {SkinClass::Tab, WM_ERASEBKGND, KeepBackground},
    {SkinClass::Progress, WM_PAINT, PaintProgress},
    {SkinClass::Progress, WM_ERASEBKGND, KeepBackground},
    {SkinClass::Trackbar, WM_PAINT, PaintTrackbar},
    {SkinClass::Trackbar, WM_ERASEBKGND, KeepBackground},
    {SkinClass::ScrollBar, WM_PAINT, PaintScrollBar},
    {SkinClass::ScrollBar, WM_ERASEBKGND, KeepBackground},
    {SkinClass::UpDown, WM_PAINT, PaintUpDown},
    {SkinClass::UpDown, WM_ERASEBKGND, KeepBackground},
    {SkinClass::StatusBar, WM_PAINT, PaintStatusBar},
    {SkinClass::Toolbar, WM_PAINT, PaintToolbar},

    {SkinClass::Menu, WM_PAINT, PaintMenuFrame},
    {SkinClass::Menu, WM_NCPAINT, PaintMenuFrame},
    {SkinClass::Any, WM_DRAWITEM, DrawMenuItem},
    {SkinClass::Dialog, WM_DRAWITEM, DrawForeignItem},
    {SkinClass::Any, WM_MEASUREITEM, MeasureMenuItem},
    {SkinClass::Any, WM_MENUCHAR, FindMenuLetter},

    {SkinClass::Holder, WM_ERASEBKGND, FillWithWindowColour},

    {SkinClass::Any, WM_CTLCOLORMSGBOX, AnswerColours},
    {SkinClass::Any, WM_CTLCOLOREDIT, AnswerColours},
    {SkinClass::Any, WM_CTLCOLORLISTBOX, AnswerColours},
    {SkinClass::Any, WM_CTLCOLORBTN, AnswerColours},
    {SkinClass::Any, WM_CTLCOLORDLG, AnswerColours},
    {SkinClass::Any, WM_CTLCOLORSCROLLBAR, AnswerColours},
    {SkinClass::Any, WM_CTLCOLORSTATIC, AnswerColours},
};

// Messages inside of one that was taken arrive here as well, taken or not: the rules decide again.
LRESULT CALLBACK SkinProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    LRESULT answer = 0;
    const UINT rowMessage = message == WM_PRINTCLIENT ? UINT(WM_PAINT) : message;
    if (SkinMayTake(message))
    {
        const SkinCall call = {hwnd, message, wParam, lParam, DescribeWindow(hwnd)};
        if (SkinTakes(call.window, message))
            for (const auto& row : kHandlers)
                if (row.message == rowMessage &&
                    (row.kind == SkinClass::Any || row.kind == call.window.kind) &&
                    row.handler(call, &answer))
                    return answer;
    }
    return CallPrevious(hwnd, message, wParam, lParam);
}
