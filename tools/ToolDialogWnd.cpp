#include "tools/ToolDialogWnd.h"

#include "base/Format_win.h"
#include "text/Strings.h"
#include "tools/Messages.h"

#include <commctrl.h>

void ShowTexts(HWND dialog, const ControlText* rows, int count)
{
    for (const ControlText* row = rows; row != rows + count; ++row)
        SetWindowTextW(row->control ? GetDlgItem(dialog, row->control) : dialog, Text(row->text));
}

HWND OpenDocked(const ToolHost& host, int dialogId, DLGPROC procedure, LPARAM parameter)
{
    const HWND dialog = CreateDialogParamW(host.instance, MAKEINTRESOURCEW(dialogId), host.docker,
                                           procedure, parameter);
    if (!dialog)
        return nullptr;
    host.dock(dialog);
    ShowWindow(dialog, SW_SHOW);
    return dialog;
}

// The docker would keep the keys, and accelerators would find nobody there.
void DockedDestroyed(const ToolHost& host, HWND dialog)
{
    host.undock(dialog);
    SetFocus(host.frame);
}

INT_PTR SendToFrame(const ToolHost& host, UINT message, WPARAM wParam, LPARAM lParam)
{
    SendMessageW(host.frame, message, wParam, lParam);
    return TRUE;
}

HWND OpenToolDialog(const ToolHost& host, int dialogId, DLGPROC procedure, LPARAM parameter)
{
    const HWND dialog = OpenDocked(host, dialogId, procedure, parameter);
    if (dialog)
        host.toolOpened(dialog);
    return dialog;
}

void ToolDialogDestroyed(const ToolHost& host, HWND dialog)
{
    DockedDestroyed(host, dialog);
    host.toolClosed(dialog);
}

// The preview is refreshed first: the frame puts it over the result when a tool is cancelled. The
// frame hears of the end when the dialog has gone and the view has its place back.
void GiveUpTool(const ToolHost& host, HWND dialog)
{
    Document* document = host.document;
    (void)CopyPicture(&document->preview, document->source); // its block is there
    host.setStatusText(Text(kTextNothing));
    DestroyWindow(dialog);
    SendMessageW(host.frame, WM_APP_TOOL_CANCELLED, 0, 0);
}

ToolWaitCursor::ToolWaitCursor(const ToolHost& ofTool) : host(ofTool)
{
    SendMessageW(host.frame, WM_APP_CURSOR_WAIT, 0, 0);
    before = SetCursor(LoadCursorW(nullptr, MAKEINTRESOURCEW(32514))); // the hourglass
}

ToolWaitCursor::~ToolWaitCursor()
{
    SendMessageW(host.frame, WM_APP_CURSOR_ARROW, 0, 0);
    SetCursor(before);
}

ToolProgress::ToolProgress(const ToolHost& ofTool) : host(ofTool)
{
    wchar_t text[kStringChars] = L"";
    if (LOWORD(SendMessageW(host.status, SB_GETTEXTLENGTHW, 0, 0)) < kStringChars)
        SendMessageW(host.status, SB_GETTEXTW, 0, reinterpret_cast<LPARAM>(text));
    before = text;
}

ToolProgress::~ToolProgress()
{
    host.setStatusText(before.c_str());
}

// A window that does not even look at its messages for some seconds is taken for dead and replaced
// by the system's image of it.
void ToolProgress::Show(int done, int count) const
{
    host.setStatusText(VcFormatText(L"%s%i%%", Text(kTextProgress), 100 * done / count).c_str());
    UpdateWindow(host.status);
    MSG message;
    PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);
}

void WarnOfShortMemory(HWND frame)
{
    const std::wstring text = SystemErrorText(ERROR_NOT_ENOUGH_MEMORY);
    MessageBoxW(frame, text.c_str(), Text(kTextWarning), MB_OK | MB_ICONASTERISK);
}

void RefuseTool(const ToolHost& host)
{
    DropResult(host.document);
    host.showSource();
    WarnOfShortMemory(host.frame);
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
