#include "tools/FusionToolWnd.h"

#include "base/Format_win.h"
#include "base/SystemFiles.h"
#include "text/Strings.h"
#include "tools/FusionDlgIds.h"
#include "tools/Messages.h"
#include "tools/Settings_win.h"
#include "tools/ToolCommandIds.h"
#include "view/ImageViewZoom.h"

#include <algorithm>
#include <filesystem>

static constexpr UINT_PTR kPreviewTimer = 1; // of a preview that was given up
static constexpr UINT_PTR kTellTimer = 2;    // of sources that turned out to be missing
static constexpr UINT kRetryMs = 20;
static constexpr int kMostFilesTold = 12; // in one box

// An open dialog.
struct FusionTool
{
    const ToolHost* host;
    FusionToolKind kind;
    std::unique_ptr<FusionSources> sources;
    FusionTask last = {};   // of the preview on the screen; no sources = none yet
    std::vector<bool> told; // the user knows that this source cannot be used
    Picture working;        // the preview's region
    bool computing = false;
};

static std::unique_ptr<FusionSources> SeriesOf(const Document& document)
{
    std::vector<std::string> paths;
    for (const std::wstring& file : document.series.files)
        paths.push_back(std::filesystem::path(file).u8string());
    auto sources = std::make_unique<FusionSources>();
    OpenFusionSources(sources.get(), paths, document.source, FusionSourceBudget());
    return sources;
}

static CBxRect<int> RegionInView(const ToolHost& host)
{
    host.updateViewArea();
    const Picture& source = host.document->source;
    return FusionRegionOf(*host.view, source->width, source->height);
}

CBxRect<int> RegionAt100(const ToolHost& host, const SBxPicBuf& picture)
{
    host.updateViewArea();
    ImageView view;
    view.area = host.view->area;
    ZoomTo100(&view, picture);
    return FusionRegionOf(view, picture.width, picture.height);
}

// What waits will change the slider or the view, or end the tool; the slider and the view move on
// as soon as they get to see it. A trackbar sends its messages, so it is the mouse and the keys
// behind them that wait.
static bool NewerInputWaits(HWND dlg, const FusionTool& tool)
{
    MSG message;
    const auto waits = [&](HWND window, UINT number)
    { return PeekMessageW(&message, window, number, number, PM_NOREMOVE) != FALSE; };
    const HWND slider = GetDlgItem(dlg, tool.kind.slider.slider);
    if (GetCapture() == slider && waits(slider, WM_MOUSEMOVE))
        return true;
    for (const UINT number : {WM_LBUTTONDOWN, WM_NCLBUTTONDOWN, WM_MOUSEWHEEL})
        if (waits(nullptr, number))
            return true;
    return tool.kind.peeksAtKeys && waits(slider, WM_KEYDOWN);
}

// Sources that turned out to be of no use, once each.
static void TellUnusable(FusionTool* tool)
{
    std::wstring text;
    int files = 0;
    for (size_t i = 0; i < tool->told.size(); ++i)
    {
        if (tool->sources->problems[i] == SourceProblem::None || tool->told[i])
            continue;
        tool->told[i] = true;
        if (++files <= kMostFilesTold)
            text += VcFormatText(L"%s %s\n", Text(kTextCannotOpenFile),
                                 WideFromUtf8(tool->sources->paths[i].c_str()).c_str());
    }
    if (files > 0)
        MessageBoxW(tool->host->frame, text.c_str(), Text(kTextWarning), MB_OK | MB_ICONASTERISK);
}

static Outcome ComputePreview(HWND dlg, FusionTool* tool, const FusionTask& task)
{
    const CBxRect<int>& region = task.region;
    const CBxSize<int> size = {region.right - region.left, region.bottom - region.top};
    Document* document = tool->host->document;
    CBxPicBufAPI::ReinitHeap(tool->working.Record(), size.cx, size.cy, document->source->components,
                             document->source->bitsPerComponent);
    if (tool->working.Empty())
        return Outcome::Failed;
    const ToolWaitCursor wait(*tool->host);
    const Outcome outcome = FuseRegion(tool->working.Record(), tool->sources.get(), task,
                                       [&] { return NewerInputWaits(dlg, *tool); });
    if (outcome == Outcome::Done)
        CBxPicBufAPI::CopyRect(document->preview.Record(), tool->working, {region.left, region.top},
                               {0, 0}, size);
    return outcome;
}

// Where everything ends that may have changed the preview. One that is up to date stays; one that
// gets outdated on the way is given up and tried again when the input has been dealt with.
static INT_PTR OnPreview(HWND dlg, FusionTool* tool)
{
    KillTimer(dlg, kPreviewTimer);
    const FusionTask task = tool->kind.task(RegionInView(*tool->host));
    if (tool->computing || IsEmptyRect(task.region) || SameTask(task, tool->last))
        return TRUE;
    tool->computing = true;
    RedrawWindow(dlg, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    const Outcome outcome = ComputePreview(dlg, tool, task);
    if (outcome == Outcome::Cancelled)
        SetTimer(dlg, kPreviewTimer, kRetryMs, nullptr);
    if (outcome == Outcome::Done)
    {
        tool->last = task;
        SendMessageW(tool->host->frame, WM_APP_PREVIEW_READY, 0, 0);
        UpdateWindow(tool->host->frame);
    }
    // A trackbar takes the mouse when the message of its press has been answered: after a box it
    // would wait for a button that is up already, and the next click would be lost there.
    if (outcome != Outcome::Cancelled)
        SetTimer(dlg, kTellTimer, kRetryMs, nullptr);
    tool->computing = false;
    return TRUE;
}

static INT_PTR OnTimer(HWND dlg, FusionTool* tool, WPARAM timer)
{
    if (timer == kPreviewTimer)
        return OnPreview(dlg, tool);
    if (tool->computing || GetCapture())
        return TRUE; // later
    KillTimer(dlg, kTellTimer);
    TellUnusable(tool);
    return TRUE;
}

static INT_PTR ValueChanged(HWND dlg, FusionTool* tool)
{
    ShowSlider(dlg, tool->kind.slider, tool->kind.value());
    SendMessageW(dlg, WM_LBUTTONUP, 0, 0);
    return TRUE;
}

static INT_PTR OnInit(HWND dlg, std::unique_ptr<FusionTool>* opening)
{
    FusionTool* tool = opening->release();
    SetWindowLongPtrW(dlg, DWLP_USER, reinterpret_cast<LONG_PTR>(tool));
    SetDlgItemTextW(dlg, IDC_FUSION_TITLE, tool->kind.title.c_str());
    for (const auto& [control, text] : tool->kind.texts)
        SetDlgItemTextW(dlg, control, Text(text));
    SetUpSlider(dlg, tool->kind.slider, tool->kind.value());
    if (tool->kind.opened)
        tool->kind.opened(dlg);
    return TRUE;
}

static INT_PTR OnSlider(HWND dlg, FusionTool* tool, WPARAM wParam, LPARAM lParam)
{
    const SliderMove move = MoveOfScroll(wParam);
    if (GetDlgItem(dlg, tool->kind.slider.slider) != reinterpret_cast<HWND>(lParam) ||
        move == SliderMove::Other)
        return FALSE;
    tool->kind.move(move, ThumbOfScroll(wParam));
    return ValueChanged(dlg, tool);
}

// In the preview's place, which nobody needs any more, and which is made anew after a failure.
static Outcome FuseResult(FusionTool* tool)
{
    const ToolWaitCursor wait(*tool->host);
    const ToolProgress progress(*tool->host);
    const FusionTask task = tool->kind.task({});
    Document* document = tool->host->document;
    const Outcome outcome = FuseWhole(document->preview.Record(), tool->sources.get(), task,
                                      [&](int source) { progress.Show(source, task.sources); });
    if (outcome == Outcome::Done)
        GiveResult(document, std::move(document->preview));
    return outcome;
}

static void MakeResult(HWND dlg, FusionTool* tool)
{
    tool->computing = true; // nothing else until the dialog has gone
    const Outcome outcome = FuseResult(tool);
    if (outcome != Outcome::Done) // it has told of them, but not that OK needs them
        tool->told.assign(tool->told.size(), false);
    TellUnusable(tool);
    if (outcome != Outcome::Done)
    {
        MessageBeep(MB_ICONHAND);
        GiveUpTool(*tool->host, dlg);
        return;
    }
    const ToolHost& host = *tool->host; // the tool goes with its dialog
    host.setStatusText(Text(host.document->series.chosenByUser ? kTextPressF5 : kTextCompareHint));
    DestroyWindow(dlg);
    SetFocus(host.frame);
    SendMessageW(host.frame, WM_APP_TOOL_DONE, 0, 0);
}

static void Finish(HWND dlg, FusionTool* tool)
{
    const HWND frame = tool->host->frame;
    const Outcome stored = tool->kind.store();
    MakeResult(dlg, tool);
    if (stored != Outcome::Done)
        TellSettingsUnsaved(frame);
}

static INT_PTR OnButton(HWND dlg, FusionTool* tool, int id)
{
    if (tool->computing)
        return FALSE;
    if (id == IDOK)
        Finish(dlg, tool);
    else if (id == IDCANCEL)
        GiveUpTool(*tool->host, dlg);
    else if (id == IDC_FUSION_DEFAULT && tool->kind.setDefaults)
    {
        tool->kind.setDefaults();
        ValueChanged(dlg, tool);
    }
    else
        return FALSE;
    return TRUE;
}

static INT_PTR OnDestroyed(HWND dlg, FusionTool* tool)
{
    if (tool->kind.ended)
        tool->kind.ended();
    SetWindowLongPtrW(dlg, DWLP_USER, 0);
    const ToolHost& host = *tool->host;
    delete tool;
    ToolDialogDestroyed(host, dlg);
    return TRUE;
}

static INT_PTR CALLBACK FusionToolProc(HWND dlg, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG)
        return OnInit(dlg, reinterpret_cast<std::unique_ptr<FusionTool>*>(lParam));
    FusionTool* tool = DialogData<FusionTool>(dlg);
    if (!tool)
        return FALSE;
    switch (message)
    {
    case WM_HSCROLL: return OnSlider(dlg, tool, wParam, lParam);
    case WM_LBUTTONUP:
    case WM_APP_VIEW_MOVED: return OnPreview(dlg, tool);
    case WM_TIMER: return OnTimer(dlg, tool, wParam);
    case WM_COMMAND: return OnButton(dlg, tool, LOWORD(wParam));
    case WM_CLOSE: return OnButton(dlg, tool, IDOK);
    case WM_MOUSEWHEEL: return SendToFrame(*tool->host, message, wParam, lParam);
    case ID_SOURCE_PREV:
    case ID_SOURCE_NEXT: return SendToFrame(*tool->host, WM_COMMAND, message, 0);
    case WM_DESTROY: return OnDestroyed(dlg, tool);
    default: return FALSE;
    }
}

static bool NothingUsable(const FusionSources& sources)
{
    return std::all_of(sources.problems.begin(), sources.problems.end(),
                       [](SourceProblem problem) { return problem != SourceProblem::None; });
}

bool ShowFusionTool(const ToolHost& host, const FusionToolKind& kind,
                    std::unique_ptr<FusionSources> sources)
{
    if (PrepareToolPictures(host.document) != Outcome::Done)
    {
        WarnOfShortMemory(host.frame);
        return false;
    }
    auto tool = std::make_unique<FusionTool>();
    tool->host = &host;
    tool->kind = kind;
    tool->sources = sources ? std::move(sources) : SeriesOf(*host.document);
    tool->told.assign(tool->sources->paths.size(), false);
    CheckFusionSources(tool->sources.get()); // of all, though the slider may begin with fewer
    const HWND dlg =
        OpenToolDialog(host, kind.dialogId, FusionToolProc, reinterpret_cast<LPARAM>(&tool));
    if (!dlg)
        return false;
    SetFocus(GetDlgItem(dlg, kind.slider.slider));
    UpdateWindow(host.frame);
    SendMessageW(dlg, WM_LBUTTONUP, 0, 0);
    // Told now, as the dialog may have to close. It may have been closed already, even by then.
    if (FusionTool* shown = DialogData<FusionTool>(dlg))
        TellUnusable(shown);
    const FusionTool* open = DialogData<FusionTool>(dlg);
    if (open && NothingUsable(*open->sources))
        GiveUpTool(host, dlg); // with no slider that could change anything
    return true;
}
