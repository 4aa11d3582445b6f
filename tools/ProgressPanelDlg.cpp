#include "tools/ProgressPanelDlg.h"

#include "base/Format_win.h"
#include "text/Strings.h"
#include "tools/Messages.h"
#include "tools/SeriesDlgIds.h"
#include "tools/ToolDialogWnd.h"

#include <commctrl.h>

#include <memory>

// A report in a posted message: wParam holds the percentage, or nothing when the text stays.
static constexpr WPARAM kKeepText = 1000;

static const ControlText kTexts[] = {{0, kTextPreparing},
                                     {IDC_SERIES_TITLE, kTextPreparing},
                                     {IDC_PROGRESS_TEXT, kTextProgressFivePercent},
                                     {IDCANCEL, kTextAbort}};

struct ProgressPanel
{
    const ToolHost* host;
    SeriesKind kind;
    std::atomic<bool>* aborted;
};

static ProgressPanel* PanelOf(HWND dlg)
{
    return DialogData<ProgressPanel>(dlg);
}

static INT_PTR OnInit(HWND dlg)
{
    const SeriesBar bar = SeriesBarOf(PanelOf(dlg)->kind);
    ShowTexts(dlg, kTexts);
    SendDlgItemMessageW(dlg, IDC_PROGRESS_BAR, PBM_SETRANGE, 0, MAKELPARAM(0, bar.length));
    SendDlgItemMessageW(dlg, IDC_PROGRESS_BAR, PBM_SETSTEP, 1, 0);
    SendDlgItemMessageW(dlg, IDC_PROGRESS_BAR, PBM_SETPOS, WPARAM(bar.start), 0);
    PanelOf(dlg)->host->enableToolCommands(false);
    return TRUE;
}

// A report that was on its way when the user aborted does not take the text back.
static INT_PTR OnReport(HWND dlg, WPARAM percent, LPARAM position)
{
    if (percent != kKeepText && !*PanelOf(dlg)->aborted)
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
        *PanelOf(dlg)->aborted = true;
        SetDlgItemTextW(dlg, IDC_PROGRESS_TEXT, Text(kTextCancelling));
    }
    return TRUE;
}

static INT_PTR OnDestroyed(HWND dlg)
{
    const auto panel = TakeDialogData<ProgressPanel>(dlg);
    DockedDestroyed(*panel->host, dlg);
    panel->host->enableToolCommands(true);
    return TRUE;
}

static INT_PTR OnMessage(HWND dlg, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_INITDIALOG: return OnInit(dlg);
    case WM_APP_SERIES_PROGRESS: return OnReport(dlg, wParam, lParam);
    case WM_COMMAND: return OnButton(dlg, LOWORD(wParam));
    case WM_MOUSEWHEEL: return SendToFrame(*PanelOf(dlg)->host, message, wParam, lParam);
    case WM_DESTROY: return OnDestroyed(dlg);
    default: return FALSE;
    }
}

HWND OpenProgressPanel(const ToolHost& host, SeriesKind kind, std::atomic<bool>* aborted)
{
    auto data = std::make_unique<ProgressPanel>(ProgressPanel{&host, kind, aborted});
    const HWND panel = OpenDocked(host, IDD_PROGRESS_PANEL, DialogProc<ProgressPanel, OnMessage>,
                                  reinterpret_cast<LPARAM>(data.get()));
    if (!panel)
        return nullptr;
    (void)data.release(); // the dialog's from here on
    host.redrawView();
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
