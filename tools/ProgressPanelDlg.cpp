#include "tools/ProgressPanelDlg.h"

#include "app/AppState.h"
#include "app/AppWindows_win.h"
#include "app/CommandsWnd.h"
#include "app/FrameView_win.h"
#include "base/Format_win.h"
#include "text/Strings.h"
#include "tools/Messages.h"
#include "tools/SeriesDlgIds.h"
#include "tools/ToolDialogWnd.h"

#include <commctrl.h>

// A report in a posted message: wParam holds the percentage, or nothing when the text stays.
static constexpr WPARAM kKeepText = 1000;

static const ControlText kTexts[] = {{0, kTextPreparing},
                                     {IDC_SERIES_TITLE, kTextPreparing},
                                     {IDC_PROGRESS_TEXT, kTextProgressFivePercent},
                                     {IDCANCEL, kTextAbort}};

static INT_PTR OnInit(HWND dlg, LPARAM kind)
{
    const SeriesBar bar = SeriesBarOf(SeriesKind(kind));
    ShowTexts(dlg, kTexts);
    SendDlgItemMessageW(dlg, IDC_PROGRESS_BAR, PBM_SETRANGE, 0, MAKELPARAM(0, bar.length));
    SendDlgItemMessageW(dlg, IDC_PROGRESS_BAR, PBM_SETSTEP, 1, 0);
    SendDlgItemMessageW(dlg, IDC_PROGRESS_BAR, PBM_SETPOS, WPARAM(bar.start), 0);
    EnableToolCommands(false);
    return TRUE;
}

// A report that was on its way when the user aborted does not take the text back.
static INT_PTR OnReport(HWND dlg, WPARAM percent, LPARAM position)
{
    if (percent != kKeepText && !g_cancelRequested)
        SetDlgItemTextW(dlg, IDC_PROGRESS_TEXT,
                        VcFormatText(L"%s%i%%", Text(kTextProgress), int(percent)).c_str());
    SendDlgItemMessageW(dlg, IDC_PROGRESS_BAR, PBM_SETPOS, WPARAM(position), 0);
    UpdateWindow(dlg);
    return TRUE;
}

static INT_PTR OnButton(HWND dlg, int id)
{
    if (id == IDOK)
        DestroyWindow(dlg);
    else if (id == IDCANCEL)
    {
        g_cancelRequested = true;
        SetDlgItemTextW(dlg, IDC_PROGRESS_TEXT, Text(kTextCancelling));
    }
    return TRUE;
}

static INT_PTR OnDestroyed(HWND dlg)
{
    DockedDestroyed(dlg);
    EnableToolCommands(true);
    return TRUE;
}

static INT_PTR CALLBACK PanelProc(HWND dlg, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_INITDIALOG: return OnInit(dlg, lParam);
    case WM_APP_SERIES_PROGRESS: return OnReport(dlg, wParam, lParam);
    case WM_COMMAND: return OnButton(dlg, LOWORD(wParam));
    case WM_MOUSEWHEEL: SendMessageW(g_hwndMain, message, wParam, lParam); return TRUE;
    case WM_DESTROY: return OnDestroyed(dlg);
    default: return FALSE;
    }
}

HWND OpenProgressPanel(SeriesKind kind)
{
    const HWND panel = OpenDocked(IDD_PROGRESS_PANEL, PanelProc, LPARAM(kind));
    if (!panel)
        return nullptr;
    RedrawView();
    UpdateWindow(panel);
    return panel;
}

void ReportToPanel(HWND panel, const SeriesProgress& progress)
{
    PostMessageW(panel, WM_APP_SERIES_PROGRESS,
                 progress.newText ? WPARAM(progress.percent) : kKeepText, progress.position);
}

void CloseProgressPanel(HWND panel)
{
    if (panel)
        SendMessageW(panel, WM_COMMAND, IDOK, 0);
}
