// From a task of the table (SkinRules.h) to the function of the same name.
// There is nothing to decide here: which message of which control has which
// task, the table says alone.

#include "skin/SkinProcedure_win.h"

#include "skin/SkinBars_win.h"
#include "skin/SkinButtons_win.h"
#include "skin/SkinChecks_win.h"
#include "skin/SkinCombos_win.h"
#include "skin/SkinFrames_win.h"
#include "skin/SkinMenus_win.h"
#include "skin/SkinScroll_win.h"
#include "skin/SkinSubclass_win.h"
#include "skin/SkinTabs_win.h"
#include "skin/SkinText_win.h"
#include "skin/SkinToolbar_win.h"

// The painting covers everything: no background, which would flicker.
static bool KeepBackground(LRESULT* answer)
{
    *answer = 1;
    return true;
}

// Controls draw themselves at once when their text, state or focus changes.
// They are kept from it, and painted soon. (WM_SETREDRAW by the default
// procedure only hides and shows the window for drawing; it repaints nothing.)
static bool ChangeQuietly(const SkinCall& call, LRESULT* answer)
{
    const bool visible = (call.window.style & WS_VISIBLE) != 0;
    if (visible)
        DefWindowProcW(call.hwnd, WM_SETREDRAW, FALSE, 0);
    *answer = CallPrevious(call.hwnd, call.message, call.wParam, call.lParam);
    if (visible && IsWindow(call.hwnd)) // the parent may have ended it when told of the change
        DefWindowProcW(call.hwnd, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(call.hwnd, nullptr, FALSE);
    return true;
}

// Owners get one message for all that is owner-drawn.
static bool DrawItem(const SkinCall& call, LRESULT* answer)
{
    switch (reinterpret_cast<const DRAWITEMSTRUCT*>(call.lParam)->CtlType)
    {
    case ODT_BUTTON: return DrawButtonItem(call, answer);
    case ODT_MENU: return DrawMenuItem(call, answer);
    case ODT_COMBOBOX: return DrawForeignItem(call, answer);
    default: return false;
    }
}

// Without a default, so that the compiler finds a task that nothing is done
// for.
static bool Perform(SkinTask task, const SkinCall& call, LRESULT* answer)
{
    switch (task)
    {
    case SkinTask::None:
    case SkinTask::PassOn: return false;
    case SkinTask::KeepBackground: return KeepBackground(answer);
    case SkinTask::ChangeQuietly: return ChangeQuietly(call, answer);
    case SkinTask::PaintFrame: return PaintFrame(call, answer);
    case SkinTask::PaintCheckOrGroup: return PaintCheckOrGroup(call, answer);
    case SkinTask::AnswerButtonDialogCode: return AnswerButtonDialogCode(call, answer);
    case SkinTask::SetButtonStyle: return SetButtonStyle(call, answer);
    case SkinTask::PaintStatic: return PaintStatic(call, answer);
    case SkinTask::PaintDisabledEdit: return PaintDisabledEdit(call, answer);
    case SkinTask::PaintCombo: return PaintCombo(call, answer);
    case SkinTask::PaintHeader: return PaintHeader(call, answer);
    case SkinTask::PaintTab: return PaintTab(call, answer);
    case SkinTask::PaintProgress: return PaintProgress(call, answer);
    case SkinTask::PaintTrackbar: return PaintTrackbar(call, answer);
    case SkinTask::PaintToolbar: return PaintToolbar(call, answer);
    case SkinTask::PaintStatusBar: return PaintStatusBar(call, answer);
    case SkinTask::PaintScrollBar: return PaintScrollBar(call, answer);
    case SkinTask::PaintUpDown: return PaintUpDown(call, answer);
    case SkinTask::PaintMenuFrame: return PaintMenuFrame(call, answer);
    case SkinTask::FillWithWindowColour: return FillWithWindowColour(call, answer);
    case SkinTask::DrawItem: return DrawItem(call, answer);
    case SkinTask::MeasureMenuItem: return MeasureMenuItem(call, answer);
    case SkinTask::FindMenuLetter: return FindMenuLetter(call, answer);
    case SkinTask::AnswerFaceColours: return AnswerFaceColours(call, answer);
    case SkinTask::AnswerFieldColours: return AnswerFieldColours(call, answer);
    case SkinTask::AnswerListColours: return AnswerListColours(call, answer);
    case SkinTask::AnswerTrackColours: return AnswerTrackColours(call, answer);
    }
    return false;
}

// Messages inside of one that was taken arrive here as well, taken or not: the
// rules decide again.
LRESULT CALLBACK SkinProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    LRESULT answer = 0;
    if (SkinMayTake(message))
    {
        const SkinCall call = {hwnd, message, wParam, lParam, DescribeWindow(hwnd)};
        if (Perform(SkinTaskFor(call.window, message), call, &answer))
            return answer;
    }
    return CallPrevious(hwnd, message, wParam, lParam);
}
