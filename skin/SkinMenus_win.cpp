// Each item of an open popup has a row here, which keeps what the item was
// before and what is drawn of it; the item's data points at its row. A row is
// laid out as mark, label, keys and arrow, from left to right, with the keys
// ending in line.

#include "skin/SkinMenus_win.h"

#include "skin/SkinColors_win.h"
#include "skin/SkinDraw_win.h"

#include <commctrl.h>

#include <algorithm>
#include <cwctype>
#include <list>

struct MenuRow
{
    HMENU menu;
    UINT position;
    UINT type; // these two as they were before
    ULONG_PTR data;
    std::wstring label, keys; // left and right of the tab in the item's text
    bool submenu;
};

constexpr int kMarkWidth = 26, kKeysGap = 28, kArrowWidth = 18;
constexpr int kRowPadding = 5, kSeparatorHeight = 9;

// A list, whose rows stay in their places: submenus come and go while items
// point at their rows.
static std::list<MenuRow> g_rows;
static HFONT g_menuFont;

static HFONT MenuFont()
{
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof metrics;
    if (!g_menuFont && SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0))
        g_menuFont = CreateFontIndirectW(&metrics.lfMenuFont);
    return g_menuFont ? g_menuFont : static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
}

void ReleaseMenuFont()
{
    if (g_menuFont)
        DeleteObject(g_menuFont);
    g_menuFont = nullptr;
}

// By comparing, since an item's data may as well be a number of the program's.
static MenuRow* RowOf(ULONG_PTR data)
{
    for (MenuRow& row : g_rows)
        if (reinterpret_cast<ULONG_PTR>(&row) == data)
            return &row;
    return nullptr;
}

static void OwnerDrawItem(HMENU menu, UINT position)
{
    wchar_t text[512] = L"";
    MENUITEMINFOW info = {};
    info.cbSize = sizeof info;
    info.fMask = MIIM_FTYPE | MIIM_DATA | MIIM_SUBMENU | MIIM_STRING;
    info.dwTypeData = text;
    info.cch = 512;
    if (!GetMenuItemInfoW(menu, position, TRUE, &info) ||
        (info.fType & (MFT_OWNERDRAW | MFT_BITMAP)))
        return;
    const std::wstring all = text;
    const size_t tab = all.find(L'\t');
    g_rows.push_back({menu, position, info.fType, info.dwItemData, all.substr(0, tab),
                      tab == std::wstring::npos ? L"" : all.substr(tab + 1),
                      info.hSubMenu != nullptr});
    info.fMask = MIIM_FTYPE | MIIM_DATA;
    info.fType |= MFT_OWNERDRAW;
    info.dwItemData = reinterpret_cast<ULONG_PTR>(&g_rows.back());
    SetMenuItemInfoW(menu, position, TRUE, &info);
}

void OwnerDrawMenu(HMENU menu)
{
    RestoreMenu(menu); // where its closing was never told
    MENUINFO info = {};
    info.cbSize = sizeof info;
    info.fMask = MIM_BACKGROUND;
    info.hbrBack = SkinBrush(kSkinMenu);
    SetMenuInfo(menu, &info);
    const int count = GetMenuItemCount(menu);
    for (int i = 0; i < count; ++i)
        OwnerDrawItem(menu, UINT(i));
}

void RestoreMenu(HMENU menu)
{
    for (auto row = g_rows.begin(); row != g_rows.end();)
    {
        if (row->menu != menu)
        {
            ++row;
            continue;
        }
        MENUITEMINFOW info = {};
        info.cbSize = sizeof info;
        info.fMask = MIIM_FTYPE | MIIM_DATA;
        info.fType = row->type;
        info.dwItemData = row->data;
        if (IsMenu(menu))
            SetMenuItemInfoW(menu, row->position, TRUE, &info);
        row = g_rows.erase(row);
    }
}

static SIZE TextSize(HDC dc, const std::wstring& text)
{
    RECT box = {};
    if (!text.empty())
        DrawTextW(dc, text.c_str(), int(text.size()), &box, DT_SINGLELINE | DT_CALCRECT);
    return {box.right, box.bottom};
}

bool MeasureMenuItem(const SkinCall& call, LRESULT* answer)
{
    MEASUREITEMSTRUCT& item = *reinterpret_cast<MEASUREITEMSTRUCT*>(call.lParam);
    const MenuRow* row = item.CtlType == ODT_MENU ? RowOf(item.itemData) : nullptr;
    if (!row)
        return false;
    const HDC dc = GetDC(nullptr);
    const HGDIOBJ before = SelectObject(dc, MenuFont());
    const SIZE label = TextSize(dc, row->label), keys = TextSize(dc, row->keys);
    SelectObject(dc, before);
    ReleaseDC(nullptr, dc);
    // The system adds the width of a check mark to whatever is answered.
    const int more = kMarkWidth + kArrowWidth - GetSystemMetrics(SM_CXMENUCHECK);
    item.itemWidth = UINT(std::max<int>(0, label.cx + (keys.cx ? kKeysGap + keys.cx : 0) + more));
    item.itemHeight =
        (row->type & MFT_SEPARATOR) ? kSeparatorHeight : UINT(label.cy + 2 * kRowPadding);
    *answer = TRUE;
    return true;
}

static void DrawSeparatorRow(HDC dc, const RECT& box)
{
    FillRectangle(dc, box.left + 6, (box.top + box.bottom) / 2, box.right - box.left - 12, 1,
                  SkinShade::kMenuEdge);
}

static void DrawRow(HDC dc, const RECT& box, const MenuRow& row, UINT state)
{
    const bool enabled = !(state & (ODS_GRAYED | ODS_DISABLED));
    const COLORREF text = enabled ? COLORREF(SkinShade::kMenuText) : SkinColor(kSkinGreyText);
    RECT plate = box;
    InflateRect(&plate, -2, 0);
    if (state & ODS_SELECTED)
        DrawRoundedBox(dc, plate, enabled ? COLORREF(SkinShade::kSelected) : SkinColor(kSkinMenu),
                       enabled ? SkinShade::kAccent : SkinShade::kMenuEdge, SkinColor(kSkinMenu));
    RECT line = box;
    if (state & ODS_CHECKED)
        DrawDisc(dc, float(box.left) + float(kMarkWidth) / 2, float(box.top + box.bottom) / 2, 3,
                 text);
    line.left += kMarkWidth;
    line.right -= kArrowWidth;
    constexpr UINT kFlags = DT_SINGLELINE | DT_VCENTER;
    DrawLabel(dc, MenuFont(), row.label, line,
              kFlags | ((state & ODS_NOACCEL) ? UINT(DT_HIDEPREFIX) : 0U), text);
    DrawLabel(dc, MenuFont(), row.keys, line, kFlags | DT_RIGHT, text);
    if (row.submenu)
        DrawArrow(dc, {box.right - kArrowWidth, box.top, box.right, box.bottom}, ArrowTo::Right,
                  text);
}

bool DrawMenuItem(const SkinCall& call, LRESULT* answer)
{
    const DRAWITEMSTRUCT& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(call.lParam);
    const MenuRow* row = RowOf(item.itemData);
    if (!row)
        return false;
    const RECT& place = item.rcItem;
    const RECT box = {0, 0, place.right - place.left, place.bottom - place.top};
    const SkinCanvas canvas(std::max<int>(box.right, 1), std::max<int>(box.bottom, 1));
    if (!canvas.dc)
        return false;
    FillBox(canvas.dc, box, SkinColor(kSkinMenu));
    if (row->type & MFT_SEPARATOR)
        DrawSeparatorRow(canvas.dc, box);
    else
        DrawRow(canvas.dc, box, *row, item.itemState);
    BitBlt(item.hDC, place.left, place.top, box.right, box.bottom, canvas.dc, 0, 0, SRCCOPY);
    // The system would now draw its own black arrow over ours: it is kept from
    // the item's place.
    ExcludeClipRect(item.hDC, place.left, place.top, place.right, place.bottom);
    *answer = TRUE;
    return true;
}

bool FindMenuLetter(const SkinCall& call, LRESULT* answer)
{
    const HMENU menu = reinterpret_cast<HMENU>(call.lParam);
    const wint_t letter = std::towupper(wint_t(LOWORD(call.wParam)));
    for (const MenuRow& row : g_rows)
    {
        const size_t mark = row.label.find(L'&');
        if (row.menu != menu || mark + 1 >= row.label.size() || mark == std::wstring::npos ||
            wint_t(std::towupper(wint_t(row.label[mark + 1]))) != letter)
            continue;
        *answer = MAKELRESULT(row.position, MNC_EXECUTE);
        return true;
    }
    return false;
}

bool MenuItemsPlace(HWND popup, RECT* place)
{
    const HMENU menu = reinterpret_cast<HMENU>(SendMessageW(popup, MN_GETHMENU, 0, 0));
    RECT first, last;
    const int count = menu ? GetMenuItemCount(menu) : 0;
    const auto isOf = [menu](const MenuRow& row) { return row.menu == menu; };
    if (count <= 0 || std::none_of(g_rows.begin(), g_rows.end(), isOf) ||
        !GetMenuItemRect(nullptr, menu, 0, &first) ||
        !GetMenuItemRect(nullptr, menu, UINT(count - 1), &last))
        return false;
    *place = {first.left, first.top, last.right, last.bottom};
    return true;
}
