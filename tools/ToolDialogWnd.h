#pragma once

#include "base/Win.h"
#include "text/Strings.h"
#include "tools/SliderRules.h"
#include "tools/ToolHost_win.h"

#include <memory>
#include <string>

// What the tools' dialogs have in common. Window thread only.

// A control and the number of its text; control 0 is the dialog's own title.
struct ControlText
{
    int control;
    TextId text;
};
void ShowTexts(HWND dialog, const ControlText* rows, int count);
template <int N>
void ShowTexts(HWND dialog, const ControlText (&rows)[N])
{
    ShowTexts(dialog, rows, N);
}

// What a dialog procedure keeps with its dialog, from WM_INITDIALOG to WM_DESTROY.
template <typename T>
T* DialogData(HWND dialog)
{
    return reinterpret_cast<T*>(GetWindowLongPtrW(dialog, DWLP_USER));
}

// The procedure of a dialog that has a T, which is the parameter that it was opened with: what
// comes before that is there, or when it is no more, is nobody's.
template <typename T, INT_PTR (*OnMessage)(HWND, UINT, WPARAM, LPARAM)>
INT_PTR CALLBACK DialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG)
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
    return DialogData<T>(dialog) ? OnMessage(dialog, message, wParam, lParam) : FALSE;
}

// Ends T with its dialog, on WM_DESTROY.
template <typename T>
std::unique_ptr<T> TakeDialogData(HWND dialog)
{
    return std::unique_ptr<T>(reinterpret_cast<T*>(SetWindowLongPtrW(dialog, DWLP_USER, 0)));
}

// Makes a dialog in the docker and shows it; null when it cannot be made. Closing, on WM_DESTROY,
// takes it out of the docker and gives the keys back to the frame.
HWND OpenDocked(const ToolHost& host, int dialogId, DLGPROC procedure, LPARAM parameter);
void DockedDestroyed(const ToolHost& host, HWND dialog);

// Makes a tool's dialog in the docker, shows it and makes it the active tool; the commands that a
// running tool forbids go off. Null when it cannot be made: nothing has changed then.
HWND OpenToolDialog(const ToolHost& host, int dialogId, DLGPROC procedure, LPARAM parameter);

// For what a tool has no use for, such as the wheel.
INT_PTR SendToFrame(const ToolHost& host, UINT message, WPARAM wParam, LPARAM lParam);

// On WM_DESTROY of such a dialog, whatever way it goes: out of the docker, commands on again.
void ToolDialogDestroyed(const ToolHost& host, HWND dialog);

// Cancel: dialog and result go, the photograph shows again.
void GiveUpTool(const ToolHost& host, HWND dialog);

// The hourglass, for as long as a computation holds the window thread.
struct ToolWaitCursor
{
    const ToolHost& host;
    HCURSOR before;

    explicit ToolWaitCursor(const ToolHost& ofTool);
    ~ToolWaitCursor();
    ToolWaitCursor(const ToolWaitCursor&) = delete;
    ToolWaitCursor& operator=(const ToolWaitCursor&) = delete;
};

// How far such a computation is, in the status bar, which then says again what it said before.
struct ToolProgress
{
    const ToolHost& host;
    std::wstring before;

    explicit ToolProgress(const ToolHost& ofTool);
    ~ToolProgress();
    ToolProgress(const ToolProgress&) = delete;
    ToolProgress& operator=(const ToolProgress&) = delete;

    void Show(int done, int count) const;
};

// Tells the user, in the system's own words, that memory is short.
void WarnOfShortMemory(HWND frame);

// The same when a tool could not even open: the photograph shows again, without a result.
void RefuseTool(const ToolHost& host);

// A slider with the label that shows its value; the label may be missing from the dialog, and so
// may the slider, which then does nothing.
struct SliderControl
{
    int slider, label; // control numbers
    SliderRange range;
};

void SetUpSlider(HWND dialog, const SliderControl& control, int value);
void ShowSlider(HWND dialog, const SliderControl& control, int value);

// What WM_HSCROLL of that slider means, and where its thumb is.
SliderMove MoveOfScroll(WPARAM wParam);
int ThumbOfScroll(WPARAM wParam);

// A key that moves this slider is waiting: what the present value asks for would be outdated
// before it is done. The slider says so itself when the last key has come up (TB_ENDTRACK).
bool NewerSliderInputWaits(HWND slider);
