#include "app/ToolbarWnd.h"

#include "app/AppWindows_win.h"
#include "app/CommandIds.h"
#include "app/Frame_win.h"
#include "base/Format_win.h"
#include "skin/ResourceImage_win.h"
#include "text/Strings.h"
#include "tools/Messages.h"
#include "view/ImageViewZoom.h"

#include <commctrl.h>

#include <vector>

static constexpr int kGapWidth = 88; // first width of the spacer and of the zoom box's place
static constexpr DWORD kToolbarStyle =
    WS_CHILD | WS_VISIBLE | WS_BORDER | TBSTYLE_LIST | TBSTYLE_TOOLTIPS;
static constexpr DWORD kZoomBoxStyle =
    WS_CHILD | WS_VISIBLE | CBS_DROPDOWN | CBS_AUTOHSCROLL | CBS_HASSTRINGS;

// The first image decides the size of all.
static HIMAGELIST AddImage(HIMAGELIST list, HBITMAP bitmap)
{
    BITMAP info = {};
    GetObjectW(bitmap, sizeof info, &info);
    if (!list)
        list = ImageList_Create(info.bmWidth, info.bmHeight, ILC_COLOR32, kCommandCount, 4);
    ImageList_Add(list, bitmap, nullptr);
    return list;
}

// The normal images and, in the same order, the greyed ones.
static void GiveImages()
{
    HIMAGELIST images = nullptr, disabled = nullptr;
    for (int i = 0; i < kCommandCount; ++i)
    {
        if (!kCommands[i].image)
            continue;
        bool flattened = false;
        const HBITMAP bitmap = LoadResourceImage(g_hInst, kCommands[i].image, &flattened);
        if (!bitmap)
            continue;
        const HBITMAP grey = MakeDisabledImage(bitmap);
        images = AddImage(images, bitmap);
        disabled = AddImage(disabled, grey ? grey : bitmap);
        DeleteObject(bitmap);
        if (grey)
            DeleteObject(grey);
    }
    SendMessageW(g_hwndToolbar, TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(images));
    SendMessageW(g_hwndToolbar, TB_SETDISABLEDIMAGELIST, 0, reinterpret_cast<LPARAM>(disabled));
}

// A separator without a command is a line; one with a command is a place of that width.
static TBBUTTON Separator(int command)
{
    TBBUTTON button = {};
    button.idCommand = command;
    button.fsState = TBSTATE_ENABLED;
    button.fsStyle = BTNS_SEP;
    button.iBitmap = command ? kGapWidth : 0;
    return button;
}

static void AddButtons()
{
    std::vector<TBBUTTON> buttons;
    int image = 0;
    for (int i = 0; i < kCommandCount; ++i)
    {
        const FrameCommand& command = kCommands[i];
        if (command.toolbar == ToolbarPlace::None)
            continue;
        if (command.toolbar != ToolbarPlace::Next)
            buttons.push_back(Separator(0));
        if (command.toolbar == ToolbarPlace::AfterGap)
            buttons.push_back(Separator(ID_TOOLBAR_SPACER));
        buttons.push_back(Separator(command.id));
        if (!command.image)
            continue;
        buttons.back().fsStyle = BTNS_BUTTON;
        buttons.back().iBitmap = image++;
    }
    SendMessageW(g_hwndToolbar, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
    SendMessageW(g_hwndToolbar, TB_SETINDENT, 7, 0);
    SendMessageW(g_hwndToolbar, TB_ADDBUTTONSW, buttons.size(),
                 reinterpret_cast<LPARAM>(buttons.data()));
}

// Enter in the zoom box applies what was typed, Escape and leaving the box bring back the zoom that
// is. Entering the box selects its text, so that typing replaces it. Keys that are commands of the
// frame stay commands here, except for the arrows, which move the caret.
static LRESULT OnZoomEditCommand(HWND edit, WPARAM wParam, LPARAM lParam)
{
    switch (LOWORD(wParam))
    {
    case ID_SOURCE_PREV: return DefSubclassProc(edit, WM_KEYDOWN, VK_LEFT, 0);
    case ID_SOURCE_NEXT: return DefSubclassProc(edit, WM_KEYDOWN, VK_RIGHT, 0);
    default: return SendMessageW(g_hwndMain, WM_COMMAND, wParam, lParam);
    }
}

static LRESULT CALLBACK ZoomEditProc(HWND edit, UINT message, WPARAM wParam, LPARAM lParam,
                                     UINT_PTR, DWORD_PTR)
{
    if (message == WM_CHAR && (wParam == VK_RETURN || wParam == VK_ESCAPE))
    {
        if (wParam == VK_RETURN)
            SendMessageW(g_hwndMain, WM_APP_ZOOM_TEXT, 0, 0);
        SetFocus(g_hwndMain);
        return 0; // no beep
    }
    if (message == WM_COMMAND && HIWORD(wParam) == 1) // an accelerator met the focus here
        return OnZoomEditCommand(edit, wParam, lParam);
    if (message == WM_LBUTTONDOWN && GetFocus() != edit)
    {
        SetFocus(edit); // the edit's own click would put the caret and lose the selection
        return 0;
    }
    if (message == WM_SETFOCUS)
    {
        const LRESULT answer = DefSubclassProc(edit, message, wParam, lParam);
        SendMessageW(edit, EM_SETSEL, 0, -1);
        return answer;
    }
    if (message == EM_SETSEL && wParam == 0 && lParam == -1)
    {
        // All of it, but with the caret in front, or "207.7 %" would lose its first digit.
        return DefSubclassProc(edit, message, WPARAM(GetWindowTextLengthW(edit)), 0);
    }
    if (message == WM_KILLFOCUS)
        PostMessageW(g_hwndMain, WM_APP_ZOOM_TEXT_RESTORE, 0, 0);
    return DefSubclassProc(edit, message, wParam, lParam);
}

static HFONT TahomaOfWeight(int weight)
{
    return CreateFontW(16, 0, 0, 0, weight, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                       OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH,
                       L"Tahoma");
}

// What stands in for Tahoma on systems without it is wider: its heavy letters would lose the
// percent sign of the usual zooms, its light ones do not.
static HFONT ZoomFont()
{
    const HFONT heavy = TahomaOfWeight(600);
    const int room = kGapWidth - 10 - GetSystemMetrics(SM_CXVSCROLL) - 4;
    const HDC dc = GetDC(nullptr);
    const HGDIOBJ previous = SelectObject(dc, heavy);
    SIZE text = {};
    GetTextExtentPoint32W(dc, L"100.0 %", 7, &text);
    SelectObject(dc, previous);
    ReleaseDC(nullptr, dc);
    if (text.cx <= room)
        return heavy;
    DeleteObject(heavy);
    return TahomaOfWeight(400);
}

static void CreateZoomBox()
{
    g_hwndZoomCombo =
        CreateWindowExW(0, L"COMBOBOX", L"", kZoomBoxStyle, 0, 0, kGapWidth, 200, g_hwndToolbar,
                        reinterpret_cast<HMENU>(UINT_PTR(ID_ZOOM_COMBO)), g_hInst, nullptr);
    static const HFONT font = ZoomFont();
    SendMessageW(g_hwndZoomCombo, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    for (const ZoomPreset& preset : kZoomPresets)
        SendMessageW(g_hwndZoomCombo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(preset.text));
    SelectInitialZoom();
    if (const HWND edit = GetWindow(g_hwndZoomCombo, GW_CHILD))
    {
        // "125.0 %" needs all the room there is.
        SendMessageW(edit, EM_SETMARGINS, EC_LEFTMARGIN | EC_RIGHTMARGIN, 0);
        SetWindowSubclass(edit, ZoomEditProc, 1, 0);
    }
}

bool CreateToolbar(HWND frame)
{
    g_hwndToolbar =
        CreateWindowExW(0, TOOLBARCLASSNAMEW, L"", kToolbarStyle, 0, 0, 0, 0, frame,
                        reinterpret_cast<HMENU>(UINT_PTR(IDC_TOOLBAR)), g_hInst, nullptr);
    if (!g_hwndToolbar)
        return false;
    GiveImages();
    AddButtons();
    CreateZoomBox();
    return true;
}

void LayoutToolbar()
{
    if (!g_hwndToolbar)
        return;
    SendMessageW(g_hwndToolbar, TB_AUTOSIZE, 0, 0);
    RECT client;
    GetClientRect(GetParent(g_hwndToolbar), &client);

    // What the other items need, the indent and both borders; the spacer takes the rest.
    RECT first, last, spacer, bar, inner;
    SendMessageW(g_hwndToolbar, TB_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&first));
    SendMessageW(g_hwndToolbar, TB_GETRECT, ID_MENU_BUTTON, reinterpret_cast<LPARAM>(&last));
    SendMessageW(g_hwndToolbar, TB_GETRECT, ID_TOOLBAR_SPACER, reinterpret_cast<LPARAM>(&spacer));
    GetWindowRect(g_hwndToolbar, &bar);
    GetClientRect(g_hwndToolbar, &inner);
    const int border = ((bar.right - bar.left) - inner.right) / 2;
    const int others = last.right - (spacer.right - spacer.left) + border;
    const int width = client.right - others;
    if (width >= 1)
    {
        TBBUTTONINFOW info = {};
        info.cbSize = sizeof info;
        info.dwMask = TBIF_SIZE;
        info.cx = WORD(width);
        SendMessageW(g_hwndToolbar, TB_SETBUTTONINFOW, ID_TOOLBAR_SPACER,
                     reinterpret_cast<LPARAM>(&info));
    }
    RECT place;
    SendMessageW(g_hwndToolbar, TB_GETRECT, ID_ZOOM_COMBO, reinterpret_cast<LPARAM>(&place));
    SetWindowPos(g_hwndZoomCombo, nullptr, place.left + 5, place.top + 4,
                 place.right - place.left - 10, place.bottom - place.top + 200,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

int ToolbarClientHeight()
{
    RECT client = {};
    if (g_hwndToolbar)
        GetClientRect(g_hwndToolbar, &client);
    return client.bottom;
}

void ShowCommandStates()
{
    for (int i = 0; i < kCommandCount; ++i)
        if (kCommands[i].image)
            SendMessageW(g_hwndToolbar, TB_ENABLEBUTTON, WPARAM(kCommands[i].id),
                         IsCommandEnabled(FrameCommands(), kCommands[i].id));
    EnableWindow(g_hwndZoomCombo, FrameCommands().zoomBox);
}

void SetZoomBoxText(const wchar_t* text)
{
    SetWindowTextW(g_hwndZoomCombo, text);
}

void SelectInitialZoom()
{
    SendMessageW(g_hwndZoomCombo, CB_SETCURSEL, kInitialZoomPreset, 0);
}

static bool ButtonEnabled(int command)
{
    TBBUTTONINFOW info = {};
    info.cbSize = sizeof info;
    info.dwMask = TBIF_STATE;
    SendMessageW(g_hwndToolbar, TB_GETBUTTONINFOW, WPARAM(command),
                 reinterpret_cast<LPARAM>(&info));
    return (info.fsState & TBSTATE_ENABLED) != 0;
}

// The button whose state a menu item shows.
static int ButtonOf(const FrameCommand& command)
{
    switch (command.group)
    {
    case CommandGroup::Save: return ID_FILE_SAVEAS;
    case CommandGroup::SingleImageTool: return ID_SINGLE_LIGHT;
    case CommandGroup::Open: return command.id;
    case CommandGroup::Always: break;
    }
    return 0;
}

// Popups are filled in the order of the table.
static void FillMenu(HMENU root)
{
    const struct
    {
        MenuPlace place, afterLine;
        TextId title;
    } popups[] = {{MenuPlace::File, MenuPlace::FileAfterLine, kTextFileMenu},
                  {MenuPlace::Vexa, MenuPlace::None, kTextVexaMenu},
                  {MenuPlace::Help, MenuPlace::None, kTextHelpMenu}};
    for (const auto& popup : popups)
    {
        const HMENU menu = CreatePopupMenu();
        for (int i = 0; i < kCommandCount; ++i)
        {
            const FrameCommand& command = kCommands[i];
            if (command.menu == MenuPlace::None ||
                (command.menu != popup.place && command.menu != popup.afterLine))
                continue;
            if (command.menu == popup.afterLine)
                AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
            const int button = ButtonOf(command);
            const bool enabled = button == 0 || ButtonEnabled(button);
            const std::wstring text = VcFormatText(L"%s%s", Text(command.menuText), command.keys);
            AppendMenuW(menu, MF_STRING | (enabled ? 0u : MF_GRAYED | MF_DISABLED),
                        UINT_PTR(command.id), text.c_str());
        }
        AppendMenuW(root, MF_STRING | MF_POPUP, reinterpret_cast<UINT_PTR>(menu),
                    Text(popup.title));
    }
}

void PopUpCommandMenu()
{
    const HMENU root = CreatePopupMenu();
    if (!root)
        return;
    FillMenu(root);
    RECT item;
    SendMessageW(g_hwndToolbar, TB_GETRECT, ID_MENU_BUTTON, reinterpret_cast<LPARAM>(&item));
    MapWindowPoints(g_hwndToolbar, nullptr, reinterpret_cast<POINT*>(&item), 2);
    SetForegroundWindow(g_hwndMain);
    TrackPopupMenu(root, 0, item.left, item.bottom, 0, g_hwndMain, nullptr);
    PostMessageW(g_hwndMain, WM_NULL, 0, 0); // or the next click beside the menu would not close it
    DestroyMenu(root);                       // and its popups
}

bool GiveTooltip(NMHDR* request)
{
    NMTTDISPINFOW* info = reinterpret_cast<NMTTDISPINFOW*>(request);
    const FrameCommand* command = FindCommand(int(request->idFrom));
    if (!command || !command->tooltipText)
        return false;
    info->lpszText = const_cast<wchar_t*>(Text(command->tooltipText)); // only read
    return true;
}
