#include "tools/ToneMapDlg.h"

#include "text/Strings.h"
#include "tools/Messages.h"
#include "tools/MultiscaleDlgIds.h"
#include "tools/ParameterControlsWnd.h"
#include "tools/Settings_win.h"
#include "tools/ToneMapModel.h"
#include "tools/ToneMapRun_win.h"
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

// An open dialog.
struct ToneMapTool
{
    const ToolHost* host;
    ToneMapModel model;
    std::shared_ptr<ToneMapRun> run; // while there is one
};

static ToneMapTool* ToolOf(HWND dlg)
{
    return DialogData<ToneMapTool>(dlg);
}

static ToneMapModel* ModelOf(HWND dlg)
{
    return &ToolOf(dlg)->model;
}

static const ToolHost& HostOf(HWND dlg)
{
    return *ToolOf(dlg)->host;
}

// The string is also the command's, whose dots promise this dialog. The blank keeps it off the
// corner of the frame around the controls.
static std::wstring ToneTitle()
{
    const std::wstring title = Text(kTextToneMappingItem);
    return L" " + title.substr(0, title.find_last_not_of(L'.') + 1);
}

static CBxPoint<double> ToPicture(const ImageView& view, int clientX, int clientY)
{
    CBxPoint<double> point;
    MapOfView(view.state).MapPointDstToSrc(&point.x, &point.y, clientX, clientY);
    return point;
}

static CBxPoint<double> ViewCentre(const ToolHost& host)
{
    host.updateViewArea();
    const CBxRect<int>& area = host.view->area;
    return ToPicture(*host.view, (area.left + area.right) / 2, (area.top + area.bottom) / 2);
}

static CBxRect<int> VisiblePart(const ImageView& view)
{
    const CBxPoint<double> first = ToPicture(view, view.area.left, view.area.top);
    const CBxPoint<double> end = ToPicture(view, view.area.right, view.area.bottom);
    return {int(first.x), int(first.y), int(end.x), int(end.y)};
}

static void ShowRectangle(const ToneMapTool& tool)
{
    tool.host->view->previewRect = IsPreviewShown(tool.model) ? &tool.model.previewRect : nullptr;
}

static void ShowToneMapPreview(ToneMapTool* tool)
{
    const ToolWaitCursor wait(*tool->host);
    ShowRectangle(*tool);
    // When memory is short the source shows inside of the rectangle.
    Document* document = tool->host->document;
    if (HasPicture(document->preview))
        (void)RenderToneMapPreview(document->preview.Record(), &tool->model, document->source);
    SendMessageW(tool->host->frame, WM_APP_PREVIEW_READY, 0, 0);
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

static INT_PTR OnInit(HWND dlg)
{
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
        ShowToneMapPreview(ToolOf(dlg));
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
        ShowToneMapPreview(ToolOf(dlg));
    return TRUE;
}

static void OnPreviewBox(HWND dlg)
{
    const ToolHost& host = HostOf(dlg);
    const bool on =
        ToneMapPreviewToggled(ModelOf(dlg), IsChecked(dlg, IDC_TONE_PREVIEW), ViewCentre(host));
    host.setStatusText(Text(on ? kTextDragHint : kTextNothing));
    ShowToneMapPreview(ToolOf(dlg));
}

static void StartRun(HWND dlg)
{
    ToneMapModel* model = ModelOf(dlg);
    CopyNumbers(HostOf(dlg).settings, Tool::ToneMap, model->numbers);
    const int end = ToneMapProgressEnd(*model);
    SendDlgItemMessageW(dlg, IDC_TONE_PROGRESS, PBM_SETRANGE, 0, MAKELPARAM(0, end));
    SendDlgItemMessageW(dlg, IDC_TONE_PROGRESS, PBM_SETPOS, 0, 0);
    ToneMapRunStarted(model);
    ShowState(dlg);
    ShowRectangle(*ToolOf(dlg));
    const ToolHost& host = HostOf(dlg);
    host.setStatusText(Text(kTextNothing));
    SendMessageW(host.frame, WM_APP_START_WORKER, 0, 0);
    SendMessageW(host.frame, WM_APP_PREVIEW_READY, 0, 0); // the source again
}

// There is no preview while the run goes on: the output takes its block.
static std::shared_ptr<ToneMapRun> MakeRun(HWND dlg, Document* document)
{
    auto run = std::make_shared<ToneMapRun>();
    run->input = document->source;
    run->output = std::move(document->preview);
    CBxPicBufAPI::ReinitHeap(run->output.Record(), run->input);
    run->numbers = ModelOf(dlg)->numbers.toneMap;
    run->dialog = dlg;
    return run;
}

static INT_PTR OnStartRun(HWND dlg)
{
    Document* document = HostOf(dlg).document;
    const auto run = MakeRun(dlg, document);
    ToolOf(dlg)->run = run;
    BeginJob(document, [run] { run->stop = true; });
    if (run->output.Empty() || StartToneMapThread(run) != Outcome::Done)
        PostMessageW(dlg, WM_TONE_CANCELLED, 1, 0);
    return TRUE;
}

static void TakeStep(HWND dlg, ToneMapStep step)
{
    const ToolHost& host = HostOf(dlg);
    switch (step)
    {
    case ToneMapStep::StartRun: StartRun(dlg); break;
    case ToneMapStep::GiveUp: GiveUpTool(HostOf(dlg), dlg); break;
    case ToneMapStep::Stop:
        StopJob(*host.document);
        EnableWindow(GetDlgItem(dlg, IDC_TONE_STOP), FALSE); // heard, until the worker has
        break;
    case ToneMapStep::Close:
        DestroyWindow(dlg);
        SendMessageW(host.frame, WM_APP_SHOW_RESULT_FIT, 0, 0);
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
    ToneMapTool* tool = ToolOf(dlg);
    const ToolHost& host = *tool->host;
    GiveResult(host.document, std::move(tool->run->output));
    tool->run = nullptr;
    ToneMapRunEnded(&tool->model, true);
    ShowState(dlg);
    host.setStatusText(Text(kTextCompareHint));
    SendMessageW(host.frame, WM_APP_TOOL_DONE, 0, 0);
    return TRUE;
}

static void TakePreviewBack(ToneMapTool* tool)
{
    Document* document = tool->host->document;
    document->preview = std::move(tool->run->output);
    (void)CopyPicture(&document->preview, document->source); // the block is there
    tool->run = nullptr;
}

static INT_PTR OnCancelled(HWND dlg, bool memoryShort)
{
    ToneMapTool* tool = ToolOf(dlg);
    const ToolHost& host = *tool->host;
    TakePreviewBack(tool);
    ToneMapRunEnded(&tool->model, false);
    ShowState(dlg);
    SendDlgItemMessageW(dlg, IDC_TONE_PROGRESS, PBM_SETPOS, 0, 0);
    SendMessageW(host.frame, WM_APP_TOOL_CANCELLED, 0, 0);
    if (!IsWindow(dlg))
        return TRUE;
    host.document->phase = DocumentPhase::ToolOpen; // still
    if (IsPreviewShown(tool->model))
    {
        UpdateWindow(host.frame); // the photograph first
        ShowToneMapPreview(tool);
    }
    if (memoryShort)
        WarnOfShortMemory(host.frame);
    return TRUE;
}

static INT_PTR OnViewMoved(HWND dlg)
{
    if (ToneMapViewMoved(ModelOf(dlg), ViewCentre(HostOf(dlg))))
        ShowToneMapPreview(ToolOf(dlg));
    return TRUE;
}

static INT_PTR OnGrab(HWND dlg, LPARAM lParam)
{
    const ImageView& view = *HostOf(dlg).view;
    const CBxPoint<double> at = ToPicture(view, GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam));
    const bool grabbed = GrabPreviewRect(ModelOf(dlg), at, VisiblePart(view));
    SetWindowLongPtrW(dlg, DWLP_MSGRESULT, grabbed);
    return TRUE;
}

static INT_PTR OnMouseMove(HWND dlg, LPARAM lParam)
{
    const ToolHost& host = HostOf(dlg);
    const CBxPoint<double> at = ToPicture(*host.view, GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam));
    if (DragPreviewRect(ModelOf(dlg), at))
        SendMessageW(host.frame, WM_APP_VIEW_REFRESH, 0, 0);
    return TRUE;
}

static INT_PTR OnDrop(HWND dlg)
{
    if (DropPreviewRect(ModelOf(dlg)))
        ShowToneMapPreview(ToolOf(dlg));
    return TRUE;
}

static INT_PTR OnDestroy(HWND dlg)
{
    const auto tool = TakeDialogData<ToneMapTool>(dlg);
    tool->host->view->previewRect = nullptr;
    ToolDialogDestroyed(*tool->host, dlg);
    return TRUE;
}

static INT_PTR OnMessage(HWND dlg, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_INITDIALOG: return OnInit(dlg);
    case WM_HSCROLL: return OnSlider(dlg, wParam, lParam);
    case WM_COMMAND: return OnCommand(dlg, LOWORD(wParam));
    case WM_TONE_START: return OnStartRun(dlg);
    case WM_TONE_ADVANCED: return OnAdvanced(dlg, wParam);
    case WM_TONE_FINISHED: return OnFinished(dlg);
    case WM_TONE_CANCELLED: return OnCancelled(dlg, wParam != 0);
    case WM_APP_VIEW_MOVED: return OnViewMoved(dlg);
    case WM_APP_PREVIEW_GRAB: return OnGrab(dlg, lParam);
    case WM_MOUSEMOVE: return OnMouseMove(dlg, lParam);
    case WM_APP_PREVIEW_DROP: return OnDrop(dlg);
    case WM_MOUSEWHEEL: return SendToFrame(HostOf(dlg), message, wParam, lParam);
    case WM_DESTROY: return OnDestroy(dlg);
    default: return FALSE;
    }
}

void OpenToneMapDialog(const ToolHost& host)
{
    if (PrepareToolPictures(host.document) != Outcome::Done)
    {
        RefuseTool(host);
        return;
    }
    auto tool = std::make_unique<ToneMapTool>();
    tool->host = &host;
    StartToneMapModel(&tool->model, host.document->source, *host.settings);
    if (!OpenToolDialog(host, IDD_TONE_MAPPING, DialogProc<ToneMapTool, OnMessage>,
                        reinterpret_cast<LPARAM>(tool.get())))
        return;
    (void)tool.release(); // the dialog's from here on
    SendMessageW(host.frame, WM_APP_PREVIEW_READY, 0, 0);
}
