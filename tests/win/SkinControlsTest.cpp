// What the skin makes of each control: its painting, its colours, its messages.

#include "skin/SkinButtonRules.h"
#include "skin/SkinWindow_win.h"
#include "tests/win/SkinHarness.h"

#include <commctrl.h>

#include <algorithm>
#include <set>
#include <string>

static LRESULT Send(HWND hwnd, UINT message, WPARAM wParam = 0, const void* data = nullptr)
{
    return SendMessageW(hwnd, message, wParam, reinterpret_cast<LPARAM>(data));
}

static RECT AskRect(HWND hwnd, UINT message, WPARAM index = 0)
{
    RECT rect = {};
    SendMessageW(hwnd, message, index, reinterpret_cast<LPARAM>(&rect));
    return rect;
}

TEST_F(Skin, ShowsHowFarBarsAre)
{
    const HWND progress = Make(PROGRESS_CLASSW, 0);
    SendMessageW(progress, PBM_SETPOS, 50, 0); // of 100
    const Shot done(progress);
    EXPECT_EQ(done.At(kSide / 4, 10), SkinShade::kAccent);
    EXPECT_EQ(done.At(3 * kSide / 4, 10), SkinShade::kGroove);

    const HWND slider = Make(TRACKBAR_CLASSW, 0);
    SendMessageW(slider, TBM_SETPOS, TRUE, 50);
    const RECT thumb = AskRect(slider, TBM_GETTHUMBRECT);
    const int x = (thumb.left + thumb.right) / 2;
    const Shot half(slider);
    EXPECT_EQ(half.At(x, 10), SkinShade::kThumb);
    EXPECT_EQ(half.At(x / 2, 10), SkinShade::kAccent);
    EXPECT_EQ(half.At((x + kSide) / 2, 10), SkinShade::kGroove);
    EnableWindow(slider, FALSE);
    EXPECT_EQ(Shot(slider).At(x, 10), SkinColor(kSkinFace)) << "hollow";

    const HWND scroll = Make(L"SCROLLBAR", SBS_HORZ);
    const SCROLLINFO info = {sizeof info, SIF_ALL, 0, 99, 50, 0, 0};
    SetScrollInfo(scroll, SB_CTL, &info, FALSE);
    const Shot first(scroll);
    EXPECT_EQ(first.At(kSide / 3, 10), SkinShade::kBarThumb);
    EXPECT_EQ(first.At(2 * kSide / 3, 10), SkinColor(kSkinShadow));
}

TEST_F(Skin, PaintsRowsOfItems)
{
    const HWND tab = Make(WC_TABCONTROLW, 0);
    wchar_t text[] = L"WWW";
    TCITEMW page = {};
    page.mask = TCIF_TEXT;
    page.pszText = text;
    Send(tab, TCM_INSERTITEMW, 0, &page);
    Send(tab, TCM_INSERTITEMW, 1, &page);
    const Shot tabs(tab);
    const RECT here = AskRect(tab, TCM_GETITEMRECT, 0), there = AskRect(tab, TCM_GETITEMRECT, 1);
    EXPECT_EQ(tabs.At(here.left + 3, here.top), SkinShade::kAccent) << "selected";
    EXPECT_EQ(tabs.At(there.left + 3, there.top + 1), SkinColor(kSkinShadow));

    const HWND header = Make(WC_HEADERW, 0);
    HDITEMW column = {};
    column.mask = HDI_TEXT | HDI_WIDTH;
    column.pszText = text;
    column.cxy = 80;
    Send(header, HDM_INSERTITEMW, 0, &column);
    const Shot columns(header);
    EXPECT_EQ(columns.At(5, 19), SkinColor(kSkinDarkShadow));
    EXPECT_EQ(columns.At(79, 10), SkinColor(kSkinHighlight)) << "between two columns";

    const HWND status = Make(STATUSCLASSNAMEW, 0);
    const Shot line(status);
    EXPECT_EQ(line.At(5, 0), SkinColor(kSkinShadow));
    EXPECT_EQ(line.At(5, 1), SkinColor(kSkinFace));

    const HWND bar = Make(TOOLBARCLASSNAMEW, CCS_NORESIZE);
    TBBUTTON button = {};
    button.iBitmap = I_IMAGENONE;
    button.idCommand = 1;
    button.fsState = TBSTATE_ENABLED | TBSTATE_PRESSED;
    Send(bar, TB_BUTTONSTRUCTSIZE, sizeof button);
    Send(bar, TB_ADDBUTTONSW, 1, &button);
    const RECT box = AskRect(bar, TB_GETITEMRECT, 0);
    const Shot tools(bar);
    EXPECT_EQ(tools.At(box.left + 4, box.top + 1), SkinShade::kAccent) << "pressed";
    EXPECT_EQ(tools.At(box.left + 4, box.top + 4), SkinShade::kToolDown);
    EXPECT_EQ(tools.At(kSide - 1, 10), SkinColor(kSkinFace));
}

TEST_F(Skin, PaintsFieldsAndFrames)
{
    const HWND combo = Make(L"COMBOBOX", CBS_DROPDOWNLIST);
    EXPECT_EQ(Shot(combo).At(10, 0), SkinShade::kEdge);
    EXPECT_EQ(Shot(combo).At(10, 5), SkinColor(kSkinWindow));
    EnableWindow(combo, FALSE);
    EXPECT_EQ(Shot(combo).At(10, 0), SkinShade::kEdgeOff);

    const HWND arrows = Make(UPDOWN_CLASSW, 0);
    EXPECT_EQ(Shot(arrows).At(5, 0), SkinShade::kEdge);
    EXPECT_EQ(Shot(arrows).At(2, 2), SkinShade::kButton);

    const HWND frame = Make(L"STATIC", SS_GRAYFRAME), group = Make(L"BUTTON", BS_GROUPBOX);
    EXPECT_EQ(Shot(frame).At(5, 0), SkinColor(kSkinHighlight));
    EXPECT_EQ(Shot(frame).At(5, 5), SkinColor(kSkinFace));
    EXPECT_EQ(Shot(group).At(5, 19), SkinColor(kSkinHighlight));

    const HWND edit = Make(L"EDIT", 0);
    SetWindowTextW(edit, L"HHHHHHHH");
    EnableWindow(edit, FALSE);
    const Shot disabled(edit);
    COLORREF lightest = 0;
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < kSide; ++x)
            lightest = std::max(lightest, disabled.At(x, y));
    EXPECT_EQ(disabled.At(kSide - 5, 10), SkinColor(kSkinWindow));
    EXPECT_EQ(lightest, SkinColor(kSkinGreyText)) << "not the system's grey";
}

// Controls that have messages for colours paint themselves.
TEST_F(Skin, TellsNewWindowsTheirColours)
{
    const HWND tree = Make(WC_TREEVIEWW, TVS_HASLINES), progress = Make(PROGRESS_CLASSW, 0);
    EXPECT_EQ(COLORREF(Send(tree, TVM_GETBKCOLOR)), SkinColor(kSkinWindow));
    EXPECT_EQ(COLORREF(Send(tree, TVM_GETLINECOLOR)), SkinColor(kSkinWindowText));
    EXPECT_EQ(COLORREF(Send(tree, TVM_GETTEXTCOLOR)), SkinColor(kSkinWindowText));
    EXPECT_EQ(COLORREF(Send(progress, PBM_GETBKCOLOR)), SkinColor(kSkinWindow));
    EXPECT_TRUE(GetWindowLongPtrW(Make(WC_TABCONTROLW, 0), GWL_STYLE) & TCS_OWNERDRAWFIXED);
    const HWND tip = CreateWindowExW(0, TOOLTIPS_CLASSW, L"", WS_POPUP, 0, 0, 0, 0, dialog, nullptr,
                                     nullptr, nullptr);
    EXPECT_EQ(COLORREF(Send(tip, TTM_GETTIPBKCOLOR)), SkinShade::kTip);
    EXPECT_EQ(COLORREF(Send(tip, TTM_GETTIPTEXTCOLOR)), SkinColor(kSkinText));
    DestroyWindow(tip);
}

TEST_F(Skin, AnswersWhatColoursAControlHas)
{
    const HWND button = Make(L"BUTTON", BS_CHECKBOX), edit = Make(L"EDIT", ES_READONLY);
    const Shot picture;
    const struct
    {
        UINT message;
        HWND control;
        int background, text;
    } rows[] = {
        {WM_CTLCOLORMSGBOX, button, kSkinFace, kSkinText},
        {WM_CTLCOLOREDIT, button, kSkinWindow, kSkinText},
        {WM_CTLCOLORLISTBOX, button, kSkinWindow, kSkinWindowText},
        {WM_CTLCOLORBTN, button, kSkinFace, kSkinText},
        {WM_CTLCOLORDLG, button, kSkinFace, kSkinText},
        {WM_CTLCOLORSCROLLBAR, button, kSkinShadow, kSkinText},
        {WM_CTLCOLORSTATIC, button, kSkinFace, kSkinText},
        {WM_CTLCOLORSTATIC, edit, kSkinWindow, kSkinText}, // read-only
    };
    for (const bool enabled : {true, false})
        for (const auto& row : rows)
        {
            EnableWindow(row.control, enabled);
            const LRESULT brush =
                Send(dialog, row.message, reinterpret_cast<WPARAM>(picture.dc), row.control);
            EXPECT_EQ(reinterpret_cast<HBRUSH>(brush), SkinBrush(row.background)) << row.message;
            EXPECT_EQ(GetBkColor(picture.dc), SkinColor(row.background)) << row.message;
            EXPECT_EQ(GetTextColor(picture.dc), SkinColor(enabled ? row.text : kSkinGreyText))
                << row.message;
        }
}

// A control that draws itself at once does so with the system's colours, and waits for nobody.
TEST_F(Skin, HasWholeControlsPaintedSoonWhenTheyChange)
{
    ShowWindow(dialog, SW_SHOWNA);
    const HWND check = Make(L"BUTTON", BS_CHECKBOX), label = Make(L"STATIC", 0);
    const HWND combo = Make(L"COMBOBOX", CBS_DROPDOWNLIST);
    Send(combo, CB_ADDSTRING, 0, L"item");
    const struct
    {
        HWND control;
        UINT message;
        WPARAM wParam;
        const void* data;
    } rows[] = {
        {check, WM_SETTEXT, 0, L"text"},    {check, WM_ENABLE, FALSE, nullptr},
        {check, BM_SETCHECK, 1, nullptr},   {check, BM_SETSTATE, TRUE, nullptr},
        {check, WM_SETFOCUS, 0, nullptr},   {check, WM_KILLFOCUS, 0, nullptr},
        {label, WM_SETTEXT, 0, L"text"},    {label, WM_ENABLE, FALSE, nullptr},
        {combo, WM_ENABLE, FALSE, nullptr}, {combo, CB_SETCURSEL, 0, nullptr},
        {combo, WM_SETFOCUS, 0, nullptr},   {combo, WM_KILLFOCUS, 0, nullptr},
    };
    for (const auto& row : rows)
    {
        RECT client = {}, waiting = {};
        GetClientRect(row.control, &client);
        ValidateRect(row.control, nullptr);
        Send(row.control, row.message, row.wParam, row.data);
        EXPECT_TRUE(GetUpdateRect(row.control, &waiting, FALSE)) << &row - rows;
        EXPECT_TRUE(EqualRect(&waiting, &client)) << &row - rows;
        EXPECT_TRUE(IsWindowVisible(row.control)) << &row - rows;
    }
}

// Erased to what is behind, or not at all: there is nothing bright to flash up.
TEST_F(Skin, FillsWhatHoldsAControlInTheFieldsColour)
{
    const WNDCLASSW holder = {0,       DefWindowProcW,
                              0,       0,
                              nullptr, nullptr,
                              nullptr, GetSysColorBrush(COLOR_HIGHLIGHT),
                              nullptr, L"SHELLDLL_DefView"};
    RegisterClassW(&holder);
    EXPECT_EQ(Shot(Make(holder.lpszClassName, 0), WM_ERASEBKGND).At(5, 5), SkinColor(kSkinWindow));
    const Shot untouched(Make(L"BUTTON", BS_PUSHBUTTON), WM_ERASEBKGND);
    EXPECT_EQ(untouched.At(5, 5), RGB(0, 0, 0));
    UnregisterClassW(holder.lpszClassName, nullptr);
}

static COLORREF WindowPixel(HWND hwnd, int x, int y)
{
    const HDC dc = GetWindowDC(hwnd);
    const COLORREF pixel = GetPixel(dc, x, y);
    ReleaseDC(hwnd, dc);
    return pixel;
}

TEST_F(Skin, PaintsEdgesAsOneLine)
{
    ShowWindow(dialog, SW_SHOWNA);
    for (const wchar_t* name : {L"EDIT", L"LISTBOX", WC_LISTVIEWW, WC_TREEVIEWW})
    {
        const HWND field = Make(name, 0);
        SetWindowLongPtrW(field, GWL_EXSTYLE, WS_EX_CLIENTEDGE);
        SetWindowPos(field, nullptr, 0, 0, 0, 0,
                     SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_FRAMECHANGED);
        RedrawWindow(field, nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME | RDW_UPDATENOW);
        EXPECT_EQ(WindowPixel(field, 5, 0), SkinShade::kEdge) << name;
        EXPECT_EQ(WindowPixel(field, 5, 1), SkinColor(kSkinWindow)) << name;
        DestroyWindow(field);
    }
    RunMenu(
        [](HMENU)
        {
            const HWND popup = FindWindowW(L"#32768", nullptr);
            EXPECT_EQ(WindowPixel(popup, 0, 0), SkinShade::kMenuEdge);
            EXPECT_EQ(WindowPixel(popup, 1, 1), SkinColor(kSkinMenu));
        });
}

TEST_F(Skin, LightsUpWhatCanBePressed)
{
    for (const wchar_t* name : {L"BUTTON", L"COMBOBOX", L"SCROLLBAR", TRACKBAR_CLASSW})
    {
        const HWND control = Make(name, 0);
        SetHotWindow(control);
        EXPECT_EQ(HotWindow(), control) << name;
        SetHotWindow(Make(L"STATIC", 0));
        EXPECT_EQ(HotWindow(), nullptr);
        SetHotWindow(control);
        DestroyWindow(control);
        EXPECT_EQ(HotWindow(), nullptr) << name << " is gone";
    }
}

static MENUITEMINFOW ItemOf(HMENU menu, UINT position)
{
    MENUITEMINFOW info = {};
    info.cbSize = sizeof info;
    info.fMask = MIIM_FTYPE | MIIM_DATA;
    GetMenuItemInfoW(menu, position, TRUE, &info);
    return info;
}

TEST_F(Skin, DrawsTheItemsOfAMenuWhileItIsOpen)
{
    const HMENU menu = CreatePopupMenu();
    AppendMenuW(menu, MF_STRING, 7, L"&Open\tCtrl+O");
    AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
    AppendMenuW(menu, MF_STRING, 8, L"&Save");
    Send(dialog, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(menu));
    UINT widths[3] = {};
    for (UINT i = 0; i < 3; ++i)
    {
        const MENUITEMINFOW item = ItemOf(menu, i);
        EXPECT_TRUE(item.fType & MFT_OWNERDRAW) << i;
        MEASUREITEMSTRUCT measure = {ODT_MENU, 0, 0, 0, 0, item.dwItemData};
        EXPECT_TRUE(Send(dialog, WM_MEASUREITEM, 0, &measure)) << i;
        EXPECT_GT(measure.itemHeight, 5u) << i;
        widths[i] = measure.itemWidth;
    }
    EXPECT_GT(widths[0], widths[2]) << "with keys";

    const Shot picture;
    DRAWITEMSTRUCT draw = {};
    draw.CtlType = ODT_MENU;
    draw.hDC = picture.dc;
    draw.itemData = ItemOf(menu, 0).dwItemData;
    draw.rcItem = {0, 0, kSide, 20};
    EXPECT_TRUE(Send(dialog, WM_DRAWITEM, 0, &draw));
    draw.rcItem = {0, 40, kSide, 60};
    draw.itemState = ODS_SELECTED;
    EXPECT_TRUE(Send(dialog, WM_DRAWITEM, 0, &draw));
    SelectClipRgn(picture.dc, nullptr); // drawn items are closed to the system
    EXPECT_EQ(picture.At(5, 5), SkinColor(kSkinMenu));
    EXPECT_EQ(picture.At(5, 45), SkinShade::kSelected);

    EXPECT_EQ(SendMessageW(dialog, WM_MENUCHAR, MAKEWPARAM('s', MF_POPUP), LPARAM(menu)),
              MAKELRESULT(2, MNC_EXECUTE));
    Send(dialog, WM_UNINITMENUPOPUP, reinterpret_cast<WPARAM>(menu));
    for (UINT i = 0; i < 3; ++i)
    {
        EXPECT_FALSE(ItemOf(menu, i).fType & MFT_OWNERDRAW) << i;
        EXPECT_EQ(ItemOf(menu, i).dwItemData, 0u) << i;
    }
    DestroyMenu(menu);
}

TEST_F(Skin, FindsAnImageForEveryStateOfACheckBox)
{
    for (const bool radio : {false, true})
    {
        std::set<std::wstring> names;
        for (const bool dark : {false, true})
            for (const int state : {0, 1, 2})
                for (const bool enabled : {false, true})
                {
                    const std::wstring name = CheckImageName(radio, dark, state, enabled);
                    EXPECT_NE(FindResourceW(nullptr, name.c_str(), L"PNG"), nullptr) << name;
                    names.insert(name);
                }
        EXPECT_EQ(names.size(), radio ? 8u : 12u) << "a radio button has two states";
    }
}
