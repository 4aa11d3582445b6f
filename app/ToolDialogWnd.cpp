#include "app/ToolDialogWnd.h"

#include "app/AppState.h"
#include "app/AppWindows_win.h"
#include "app/CommandsWnd.h"
#include "app/DockerWnd.h"

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
    default: return SliderMove::Other;
    }
}

int ThumbOfScroll(WPARAM wParam)
{
    return short(HIWORD(wParam));
}
