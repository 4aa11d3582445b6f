#include "app/ToolDialogWnd.h"

#include "app/AppState.h"
#include "app/AppWindows_win.h"
#include "app/CommandsWnd.h"
#include "app/DockerWnd.h"
#include "app/Format_win.h"
#include "app/Messages.h"
#include "app/Strings.h"

#include <commctrl.h>

HWND OpenToolDialog(int dialogId, DLGPROC procedure, LPARAM parameter)
{
    const HWND dialog =
        CreateDialogParamW(g_hInst, MAKEINTRESOURCEW(dialogId), g_hwndDocker, procedure, parameter);
    if (!dialog)
        return nullptr;
    g_hwndActiveTool = dialog;
    g_workerBusy = true;
    EnableToolCommands(false);
    DockWindow(dialog);
    ShowWindow(dialog, SW_SHOW);
    return dialog;
}

void ToolDialogDestroyed(HWND dialog)
{
    UndockWindow(dialog);
    if (g_hwndActiveTool != dialog)
        return;
    g_hwndActiveTool = nullptr;
    g_workerBusy = false;
    EnableToolCommands(true);
}

ToolWaitCursor::ToolWaitCursor()
{
    SendMessageW(g_hwndMain, WM_APP_CURSOR_WAIT, 0, 0);
    before = SetCursor(LoadCursorW(nullptr, MAKEINTRESOURCEW(32514))); // the hourglass
}

ToolWaitCursor::~ToolWaitCursor()
{
    SendMessageW(g_hwndMain, WM_APP_CURSOR_ARROW, 0, 0);
    SetCursor(before);
}

void WarnOfShortMemory()
{
    const std::wstring text = SystemErrorText(ERROR_NOT_ENOUGH_MEMORY);
    MessageBoxW(g_hwndMain, text.c_str(), g_strings[3], MB_OK | MB_ICONASTERISK);
}

void SetUpSlider(HWND dialog, const SliderControl& control, int value)
{
    SendDlgItemMessageW(dialog, control.slider, TBM_SETRANGE, TRUE,
                        MAKELPARAM(control.range.low, control.range.high));
    SendDlgItemMessageW(dialog, control.slider, TBM_SETPAGESIZE, 0, 1);
    ShowSlider(dialog, control, value);
}

void ShowSlider(HWND dialog, const SliderControl& control, int value)
{
    SendDlgItemMessageW(dialog, control.slider, TBM_SETPOS, TRUE, value);
    if (GetDlgItem(dialog, control.label))
        SetDlgItemInt(dialog, control.label, UINT(value), TRUE);
}

SliderMove MoveOfScroll(WPARAM wParam)
{
    switch (LOWORD(wParam))
    {
    case TB_LINEUP:
    case TB_PAGEUP: return SliderMove::Down;
    case TB_LINEDOWN:
    case TB_PAGEDOWN: return SliderMove::Up;
    case TB_THUMBTRACK: return SliderMove::Drag;
    case TB_THUMBPOSITION: return SliderMove::Drop;
    case TB_TOP: return SliderMove::ToLow;
    case TB_BOTTOM: return SliderMove::ToHigh;
    default: return SliderMove::Other;
    }
}

int ThumbOfScroll(WPARAM wParam)
{
    return short(HIWORD(wParam));
}

bool NewerSliderInputWaits(HWND slider)
{
    MSG message;
    if (!PeekMessageW(&message, slider, WM_KEYDOWN, WM_KEYDOWN, PM_NOREMOVE | PM_NOYIELD))
        return false;
    switch (message.wParam)
    {
    case VK_UP:
    case VK_DOWN:
    case VK_PRIOR:
    case VK_NEXT:
    case VK_HOME:
    case VK_END: return true;
    default: return false; // not the slider's
    }
}
