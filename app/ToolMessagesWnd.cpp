#include "app/ToolMessagesWnd.h"

#include "app/AppWindows_win.h"
#include "app/CommandIds.h"
#include "app/CommandsWnd.h"
#include "app/FrameView_win.h"
#include "app/Frame_win.h"
#include "app/ToolbarWnd.h"
#include "tools/ExposureFusionDlg.h"
#include "tools/PowerFusionDlg.h"
#include "tools/SeriesWorkerWnd.h"
#include "tools/ToneMapRun_win.h"

bool g_closeWanted;

// The user closed the window while a worker was busy: it goes as soon as the worker has let go of
// the document, since the worker reads the source until then.
static bool CloseIfWanted()
{
    const bool closes = g_closeWanted && !IsComputing();
    if (closes)
        DestroyWindow(g_hwndMain);
    return closes;
}

LRESULT OnSeriesCancelled(HWND, WPARAM, LPARAM)
{
    Document& document = FrameDocument();
    EndSeries(false);
    DropResult(&document);
    if (!CloseIfWanted() && HasPicture(document.source))
        ShowSource(document.source);
    return 0;
}

LRESULT OnSeriesReady(int id)
{
    if (SeriesWasAborted()) // after its last file
        return OnSeriesCancelled(nullptr, 0, 0);
    EndSeries(true);
    // The message was on its way for a while: the photograph may be closed by now, or a tool open.
    const Document& document = FrameDocument();
    if (CloseIfWanted() || document.phase != DocumentPhase::Idle || document.series.files.empty() ||
        !HasPicture(document.source))
        return 0;
    if (id == ID_OPEN_EXPOSURE_FUSION)
        ShowExposureFusionDialog(FrameHost());
    else
        ShowPowerFusionDialog(FrameHost(), SeriesTitle());
    return 0;
}

LRESULT OnPreviewReady(HWND, WPARAM, LPARAM)
{
    ShowPreview();
    return 0;
}

LRESULT OnShowResult(HWND, WPARAM, LPARAM)
{
    ShowResult();
    return 0;
}

LRESULT OnShowResultFit(HWND, WPARAM, LPARAM)
{
    UpdateViewArea();
    RecentreView(&g_view);
    ShowResult();
    return 0;
}

LRESULT OnResultCreated(HWND, WPARAM, LPARAM)
{
    FrameDocument().unsaved = true;
    return 0;
}

// By the class, not by SetCursor: the shape has to survive the mouse moving over the frame.
static void SetClassCursor(const wchar_t* name)
{
    SetClassLongPtrW(g_hwndMain, GCLP_HCURSOR,
                     reinterpret_cast<LONG_PTR>(LoadCursorW(nullptr, name)));
}

LRESULT OnCursorWait(HWND, WPARAM, LPARAM)
{
    SetClassCursor(MAKEINTRESOURCEW(32514));
    return 0;
}

LRESULT OnCursorArrow(HWND, WPARAM, LPARAM)
{
    SetClassCursor(MAKEINTRESOURCEW(32512));
    return 0;
}

LRESULT OnCursorMove(HWND, WPARAM, LPARAM)
{
    SetClassCursor(MAKEINTRESOURCEW(32646));
    return 0;
}

LRESULT OnToolDone(HWND frame, WPARAM, LPARAM)
{
    EndWork(&FrameDocument());
    FrameDocument().unsaved = true;
    EnableToolCommands(true);
    OnShowResultFit(frame, 0, 0);
    CloseIfWanted();
    return 0;
}

LRESULT OnToolCancelled(HWND, WPARAM, LPARAM)
{
    EndWork(&FrameDocument());
    RestoreResult(&FrameDocument());
    ShowResult();
    CloseIfWanted();
    return 0;
}

// A tool asks for its run by way of the frame, which knows whether another one is at work.
LRESULT OnStartWorker(HWND, WPARAM, LPARAM)
{
    if (g_hwndActiveTool && !IsComputing())
        SendMessageW(g_hwndActiveTool, WM_TONE_START, 0, 0);
    return 0;
}

LRESULT OnZoomText(HWND, WPARAM, LPARAM)
{
    ApplyTypedZoom();
    return 0;
}

// The box was left without Enter: what was typed there does not count.
LRESULT OnZoomTextRestore(HWND, WPARAM, LPARAM)
{
    if (FrameCommands().zoomBox)
        SetZoomBoxText(ZoomText(g_view.state.scale).c_str());
    return 0;
}

LRESULT OnViewRefresh(HWND, WPARAM, LPARAM)
{
    RedrawView();
    return 0;
}
