#include "tools/ToneMapDlg.h"

#include "app/AppState.h"
#include "app/AppWindows_win.h"
#include "app/CommandsWnd.h"
#include "app/FrameView_win.h"
#include "text/Strings.h"
#include "tools/Messages.h"
#include "tools/MultiscaleDlgIds.h"
#include "tools/ParameterControlsWnd.h"
#include "tools/Settings.h"
#include "tools/ToneMapModel.h"
#include "tools/ToneMapWorker_win.h"
#include "tools/ToolDialogWnd.h"

#include <commctrl.h>
#include <windowsx.h>

#include <memory>

static const ControlText kToneTexts[] = {
    {IDC_TONE_PREVIEW, kTextPreview},
    {IDC_TONE_STOP, kTextAbort},
    {IDOK, kTextOk},
    {IDCANCEL, kTextCancel},
};

static const ParameterControls kControls = {Tool::ToneMap, IDC_TONE_LABEL, IDC_TONE_SLIDER,
                                            IDC_TONE_VALUE, IDC_TONE_BOX};

static ToneMapModel* ModelOf(HWND dlg)
{
    return DialogData<ToneMapModel>(dlg);
}

// The string is also the command's, whose dots promise this dialog. The blank keeps it off the
// corner of the frame around the controls.
static std::wstring ToneTitle()
{
    const std::wstring title = Text(kTextToneMappingItem);
    return L" " + title.substr(0, title.find_last_not_of(L'.') + 1);
}

static CBxPoint<double> ToPicture(int clientX, int clientY)
{
    CBxPoint<double> point;
    MapOfView(g_view.state).MapPointDstToSrc(&point.x, &point.y, clientX, clientY);
    return point;
}

static CBxPoint<double> ViewCentre()
{
    UpdateViewArea();
    const CBxRect<int>& area = g_view.area;
    return ToPicture((area.left + area.right) / 2, (area.top + area.bottom) / 2);
}

static CBxRect<int> VisiblePart()
{
    const CBxPoint<double> first = ToPicture(g_view.area.left, g_view.area.top);
    const CBxPoint<double> end = ToPicture(g_view.area.right, g_view.area.bottom);
    return {int(first.x), int(first.y), int(end.x), int(end.y)};
}

static void ShowRectangle(const ToneMapModel& model)
{
    g_view.previewRect = IsPreviewShown(model) ? &model.previewRect : nullptr;
}

static void ShowToneMapPreview(ToneMapModel* model)
{
    const ToolWaitCursor wait;
    ShowRectangle(*model);
    // When memory is short the source shows inside of the rectangle.
    if (HasPicture(g_previewPicture))
        (void)RenderToneMapPreview(&g_previewPicture, model, g_sourcePicture);
    SendMessageW(g_hwndMain, WM_APP_PREVIEW_READY, 0, 0);
}

// What can be used and seen in which state.
static void ShowState(HWND dlg)
{
    const ToneMapModel& model = *ModelOf(dlg);
    const bool editing = model.state == ToneMapState::Editing;
    const bool running = model.state == ToneMapState::Running;
    EnableControls(dlg, kControls, editing);
    EnableWindow(GetDlgItem(dlg, IDC_TONE_PREVIEW), editing);
    EnableWindow(GetDlgItem(dlg, IDOK), !running);
    EnableWindow(GetDlgItem(dlg, IDCANCEL), editing);
    EnableWindow(GetDlgItem(dlg, IDC_TONE_STOP), running);
    for (int id : {IDC_TONE_STOP, IDC_TONE_PROGRESS})
        ShowWindow(GetDlgItem(dlg, id), running ? SW_SHOW : SW_HIDE);
    // There is nothing left to cancel: the result stays.
    ShowWindow(GetDlgItem(dlg, IDCANCEL),
               model.state == ToneMapState::Finished ? SW_HIDE : SW_SHOW);
    // Now: a preview may keep this thread busy next. The controls have asked for it themselves.
    RedrawWindow(dlg, nullptr, nullptr, RDW_ALLCHILDREN | RDW_UPDATENOW);
}

static INT_PTR OnInit(HWND dlg, LPARAM lParam)
{
    SetWindowLongPtrW(dlg, DWLP_USER, lParam);
    const ToneMapModel& model = *ModelOf(dlg);
    SetWindowTextW(dlg, ToneTitle().c_str());
    SetDlgItemTextW(dlg, IDC_TOOL_FRAME, ToneTitle().c_str());
    ShowTexts(dlg, kToneTexts);
    SetUpControls(dlg, kControls, model.numbers);
    if (!model.hasColors)
        ShowWindow(GetDlgItem(dlg, IDC_TONE_COLORS), SW_HIDE);
    ShowState(dlg);
    return FALSE; // the frame keeps the focus until the user takes it
}

static INT_PTR OnSlider(HWND dlg, WPARAM wParam, LPARAM lParam)
{
    ToneMapModel* model = ModelOf(dlg);
    const HWND control = reinterpret_cast<HWND>(lParam);
    const ParameterRow* slider = SliderOf(kControls, GetDlgCtrlID(control));
    if (!slider)
        return FALSE;
    const bool render =
        ToneMapSliderMoved(model, *slider, MoveOfScroll(wParam), ThumbOfScroll(wParam));
    ShowNumber(dlg, kControls, *slider, model->numbers);
    if (render && !NewerSliderInputWaits(control))
        ShowToneMapPreview(model);
    return TRUE;
}

static bool IsChecked(HWND dlg, int id)
{
    return IsDlgButtonChecked(dlg, id) == BST_CHECKED;
}

static INT_PTR OnBox(HWND dlg, int id)
{
    const ParameterRow* box = BoxOf(kControls, id);
    if (!box)
        return FALSE;
    if (ToneMapBoxToggled(ModelOf(dlg), *box, IsChecked(dlg, id)))
        ShowToneMapPreview(ModelOf(dlg));
    return TRUE;
}

static void OnPreviewBox(HWND dlg)
{
    const bool on =
        ToneMapPreviewToggled(ModelOf(dlg), IsChecked(dlg, IDC_TONE_PREVIEW), ViewCentre());
    SetStatusText(Text(on ? kTextDragHint : kTextNothing));
    ShowToneMapPreview(ModelOf(dlg));
}

static void StoreNumbers(const ToolNumbers& numbers)
{
    // Written either way: only this thread ever changes them.
    const bool locked = LockToneMapSettings();
    CopyNumbers(&g_settings, Tool::ToneMap, numbers);
    if (locked)
        UnlockToneMapSettings();
}

static void StartRun(HWND dlg)
{
    ToneMapModel* model = ModelOf(dlg);
    StoreNumbers(model->numbers);
    const int end = ToneMapProgressEnd(*model);
    SendDlgItemMessageW(dlg, IDC_TONE_PROGRESS, PBM_SETRANGE, 0, MAKELPARAM(0, end));
    SendDlgItemMessageW(dlg, IDC_TONE_PROGRESS, PBM_SETPOS, 0, 0);
    ToneMapRunStarted(model);
    ShowState(dlg);
    ShowRectangle(*model);
    SetStatusText(Text(kTextNothing));
    SendMessageW(g_hwndMain, WM_APP_START_WORKER, 0, 0);
    SendMessageW(g_hwndMain, WM_APP_PREVIEW_READY, 0, 0); // the source again
}

static void TakeStep(HWND dlg, ToneMapStep step)
{
    switch (step)
    {
    case ToneMapStep::StartRun: StartRun(dlg); break;
    case ToneMapStep::GiveUp: GiveUpTool(dlg); break;
    case ToneMapStep::Stop:
        g_stopRequested = true;
        EnableWindow(GetDlgItem(dlg, IDC_TONE_STOP), FALSE); // heard, until the worker has
        break;
    case ToneMapStep::Close:
        DestroyWindow(dlg);
        SendMessageW(g_hwndMain, WM_APP_SHOW_RESULT_FIT, 0, 0);
        break;
    case ToneMapStep::Nothing: break;
    }
}

static INT_PTR OnCommand(HWND dlg, int id)
{
    switch (id)
    {
    case IDOK: TakeStep(dlg, ToneMapOk(*ModelOf(dlg))); return TRUE;
    case IDCANCEL: TakeStep(dlg, ToneMapCancel(*ModelOf(dlg))); return TRUE;
    case IDC_TONE_STOP: TakeStep(dlg, ToneMapStop(*ModelOf(dlg))); return TRUE;
    case IDC_TONE_PREVIEW: OnPreviewBox(dlg); return TRUE;
    default: return OnBox(dlg, id);
    }
}

static INT_PTR OnAdvanced(HWND dlg, WPARAM steps)
{
    SendDlgItemMessageW(dlg, IDC_TONE_PROGRESS, PBM_DELTAPOS, steps, 0);
    return TRUE;
}

// The frame may close, and this dialog with it, inside of the messages that end a run.
static INT_PTR OnFinished(HWND dlg)
{
    ToneMapRunEnded(ModelOf(dlg), true);
    ShowState(dlg);
    SetStatusText(Text(kTextCompareHint));
    SendMessageW(g_hwndMain, WM_APP_TOOL_DONE, 0, 0);
    return TRUE;
}

static INT_PTR OnCancelled(HWND dlg, bool memoryShort)
{
    g_stopRequested = false;
    ToneMapRunEnded(ModelOf(dlg), false);
    ShowState(dlg);
    SendDlgItemMessageW(dlg, IDC_TONE_PROGRESS, PBM_SETPOS, 0, 0);
    SendMessageW(g_hwndMain, WM_APP_TOOL_CANCELLED, 0, 0);
    if (!IsWindow(dlg))
        return TRUE;
    g_workerBusy = true; // the dialog is still open
    if (IsPreviewShown(*ModelOf(dlg)))
    {
        UpdateWindow(g_hwndMain); // the photograph first
        ShowToneMapPreview(ModelOf(dlg));
    }
    if (memoryShort)
        WarnOfShortMemory();
    return TRUE;
}

static INT_PTR OnViewMoved(HWND dlg)
{
    if (ToneMapViewMoved(ModelOf(dlg), ViewCentre()))
        ShowToneMapPreview(ModelOf(dlg));
    return TRUE;
}

static INT_PTR OnGrab(HWND dlg, LPARAM lParam)
{
    const bool grabbed = GrabPreviewRect(
        ModelOf(dlg), ToPicture(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)), VisiblePart());
    SetWindowLongPtrW(dlg, DWLP_MSGRESULT, grabbed);
    return TRUE;
}

static INT_PTR OnMouseMove(HWND dlg, LPARAM lParam)
{
    if (DragPreviewRect(ModelOf(dlg), ToPicture(GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam))))
        SendMessageW(g_hwndMain, WM_APP_VIEW_REFRESH, 0, 0);
    return TRUE;
}

static INT_PTR OnDrop(HWND dlg)
{
    if (DropPreviewRect(ModelOf(dlg)))
        ShowToneMapPreview(ModelOf(dlg));
    return TRUE;
}

static INT_PTR OnDestroy(HWND dlg)
{
    const std::unique_ptr<ToneMapModel> model(ModelOf(dlg));
    SetWindowLongPtrW(dlg, DWLP_USER, 0);
    g_view.previewRect = nullptr;
    ToolDialogDestroyed(dlg);
    return TRUE;
}

static INT_PTR CALLBACK ToneMapProc(HWND dlg, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG)
        return OnInit(dlg, lParam);
    if (!ModelOf(dlg))
        return FALSE; // not yet, or no more
    switch (message)
    {
    case WM_HSCROLL: return OnSlider(dlg, wParam, lParam);
    case WM_COMMAND: return OnCommand(dlg, LOWORD(wParam));
    case WM_TONE_ADVANCED: return OnAdvanced(dlg, wParam);
    case WM_TONE_FINISHED: return OnFinished(dlg);
    case WM_TONE_CANCELLED: return OnCancelled(dlg, wParam != 0);
    case WM_APP_VIEW_MOVED: return OnViewMoved(dlg);
    case WM_APP_PREVIEW_GRAB: return OnGrab(dlg, lParam);
    case WM_MOUSEMOVE: return OnMouseMove(dlg, lParam);
    case WM_APP_PREVIEW_DROP: return OnDrop(dlg);
    case WM_MOUSEWHEEL: SendMessageW(g_hwndMain, message, wParam, lParam); return TRUE;
    case WM_DESTROY: return OnDestroy(dlg);
    default: return FALSE;
    }
}

void OpenToneMapDialog()
{
    g_resultUnsaved = false;
    if (!PrepareToolPictures())
    {
        RefuseTool();
        return;
    }
    auto model = std::make_unique<ToneMapModel>();
    StartToneMapModel(model.get(), g_sourcePicture, g_settings);
    if (!OpenToolDialog(IDD_TONE_MAPPING, ToneMapProc, reinterpret_cast<LPARAM>(model.get())))
        return;
    model.release(); // the dialog's from here on
    SendMessageW(g_hwndMain, WM_APP_PREVIEW_READY, 0, 0);
}
