#pragma once

#include "app/SliderRules.h"
#include "app/Win.h"

// What the tools' dialogs have in common. Window thread only.

// Makes a tool's dialog in the docker, shows it and makes it the active tool; the commands that a
// running tool forbids go off. Null when it cannot be made: nothing has changed then.
HWND OpenToolDialog(int dialogId, DLGPROC procedure, LPARAM parameter);

// On WM_DESTROY of such a dialog, whatever way it goes: out of the docker, commands on again.
void ToolDialogDestroyed(HWND dialog);

// The hourglass, for as long as a computation holds the window thread.
struct ToolWaitCursor
{
    HCURSOR before;

    ToolWaitCursor();
    ~ToolWaitCursor();
    ToolWaitCursor(const ToolWaitCursor&) = delete;
    ToolWaitCursor& operator=(const ToolWaitCursor&) = delete;
};

// Tells the user, in the system's own words, that memory is short.
void WarnOfShortMemory();

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

// The row that a WM_HSCROLL belongs to, or null.
template <int N>
const SliderControl* SliderOfScroll(HWND dialog, const SliderControl (&rows)[N], LPARAM lParam)
{
    for (const SliderControl& row : rows)
        if (GetDlgItem(dialog, row.slider) == reinterpret_cast<HWND>(lParam))
            return &row;
    return nullptr;
}
