#include "tools/ToolDialogWnd.h"

#include "app/AppState.h"
#include "app/AppWindows_win.h"
#include "app/CommandsWnd.h"
#include "app/DockerWnd.h"
#include "app/FrameView_win.h"
#include "base/Format_win.h"
#include "text/Strings.h"
#include "tools/Messages.h"

#include <commctrl.h>

void ShowTexts(HWND dialog, const ControlText* rows, int count)
{
    for (const ControlText* row = rows; row != rows + count; ++row)
        SetWindowTextW(row->control ? GetDlgItem(dialog, row->control) : dialog, Text(row->text));
}

HWND OpenDocked(int dialogId, DLGPROC procedure, LPARAM parameter)
{
    const HWND dialog =
        CreateDialogParamW(g_hInst, MAKEINTRESOURCEW(dialogId), g_hwndDocker, procedure, parameter);
    if (!dialog)
        return nullptr;
    DockWindow(dialog);
    ShowWindow(dialog, SW_SHOW);
    return dialog;
}

// The docker would keep the keys, and accelerators would find nobody there.
void DockedDestroyed(HWND dialog)
{
    UndockWindow(dialog);
    SetFocus(g_hwndMain);
}

HWND OpenToolDialog(int dialogId, DLGPROC procedure, LPARAM parameter)
{
    const HWND dialog = OpenDocked(dialogId, procedure, parameter);
    if (!dialog)
        return nullptr;
    g_hwndActiveTool = dialog;
    g_workerBusy = true;
    EnableToolCommands(false);
    return dialog;
}

void ToolDialogDestroyed(HWND dialog)
{
    DockedDestroyed(dialog);
    if (g_hwndActiveTool != dialog)
        return;
    g_hwndActiveTool = nullptr;
    g_workerBusy = false;
    EnableToolCommands(true);
}

// The preview is refreshed first: the frame puts it over the result when a tool is cancelled. The
// frame hears of the end when the dialog has gone and the view has its place back.
void GiveUpTool(HWND dialog)
{
    CopyPicture(&g_previewPicture, g_sourcePicture);
    SetStatusText(Text(kTextNothing));
    DestroyWindow(dialog);
    SendMessageW(g_hwndMain, WM_APP_TOOL_CANCELLED, 0, 0);
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

ToolProgress::ToolProgress()
{
    wchar_t text[kStringChars] = L"";
    if (LOWORD(SendMessageW(g_hwndStatus, SB_GETTEXTLENGTHW, 0, 0)) < kStringChars)
        SendMessageW(g_hwndStatus, SB_GETTEXTW, 0, reinterpret_cast<LPARAM>(text));
    before = text;
}

ToolProgress::~ToolProgress()
{
    SetStatusText(before.c_str());
}

// A window that does not even look at its messages for some seconds is taken for dead and replaced
// by the system's image of it.
void ToolProgress::Show(int done, int count) const
{
    SetStatusText(VcFormatText(L"%s%i%%", Text(kTextProgress), 100 * done / count).c_str());
    UpdateWindow(g_hwndStatus);
    MSG message;
    PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);
}

void WarnOfShortMemory()
{
    const std::wstring text = SystemErrorText(ERROR_NOT_ENOUGH_MEMORY);
    MessageBoxW(g_hwndMain, text.c_str(), Text(kTextWarning), MB_OK | MB_ICONASTERISK);
}

void RefuseTool()
{
    CBxPicBufAPI::DoneHeap(&g_resultPicture);
    CBxPicBufAPI::DoneHeap(&g_previewPicture);
    ShowSource(g_sourcePicture);
    WarnOfShortMemory();
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
