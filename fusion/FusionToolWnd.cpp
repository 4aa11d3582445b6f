#include "fusion/FusionToolWnd.h"

#include "app/AppState.h"
#include "app/AppWindows_win.h"
#include "app/CommandsWnd.h"
#include "app/Format_win.h"
#include "app/FrameView_win.h"
#include "app/Messages.h"
#include "app/Strings.h"
#include "app/ToolDialogWnd.h"
#include "picture/SystemFiles.h"

#include <filesystem>

static constexpr UINT kRetryMs = 20;
static constexpr int kMostFilesTold = 12; // in one box

void OpenFusionTool(FusionTool* tool, HWND dialog, int slider)
{
    tool->dialog = dialog;
    tool->slider = GetDlgItem(dialog, slider);
    std::vector<std::string> paths;
    for (int32_t i = 0; i < g_sourceCount; ++i)
        paths.push_back(std::filesystem::path(g_sourceFiles[i]).u8string());
    OpenFusionSources(&tool->sources, paths, g_sourcePicture, FusionSourceBudget());
    tool->told.assign(paths.size(), false);
}

void ReleaseFusionTool(FusionTool* tool)
{
    CBxPicBufAPI::DoneHeap(&tool->working);
}

CBxRect<int> RegionInView()
{
    UpdateViewArea();
    return FusionRegionOf(g_view, g_sourcePicture.width, g_sourcePicture.height);
}

// The slider will move on as soon as it gets to see what waits for it. A trackbar sends its
// messages, so it is the mouse and the keys behind them that wait.
static bool NewerInputWaits(const FusionTool& tool)
{
    MSG message;
    const auto waits = [&](UINT number)
    { return PeekMessageW(&message, tool.slider, number, number, PM_NOREMOVE) != FALSE; };
    if (GetCapture() == tool.slider && waits(WM_MOUSEMOVE))
        return true;
    return waits(WM_LBUTTONDOWN) || (tool.peeksAtKeys && waits(WM_KEYDOWN));
}

// Sources that turned out to be of no use, once each.
static void TellUnusable(FusionTool* tool)
{
    std::wstring text;
    int files = 0;
    for (size_t i = 0; i < tool->told.size(); ++i)
    {
        if (!tool->sources.unusable[i] || tool->told[i])
            continue;
        tool->told[i] = true;
        if (++files <= kMostFilesTold)
            text += VcFormatText(L"%s %s\n", g_strings[33],
                                 WideFromUtf8(tool->sources.paths[i].c_str()).c_str());
    }
    if (files > 0)
        MessageBoxW(g_hwndMain, text.c_str(), g_strings[3], MB_OK | MB_ICONASTERISK);
}

static FusionOutcome ComputePreview(FusionTool* tool, const FusionTask& task)
{
    const CBxRect<int>& region = task.region;
    const CBxSize<int> size = {region.right - region.left, region.bottom - region.top};
    CBxPicBufAPI::ReinitHeap(&tool->working, size.cx, size.cy, g_sourcePicture.components,
                             g_sourcePicture.bitsPerComponent);
    if (!tool->working.data)
        return FusionOutcome::Failed;
    const ToolWaitCursor wait;
    const FusionOutcome outcome =
        FuseRegion(&tool->working, &tool->sources, task, [&] { return NewerInputWaits(*tool); });
    if (outcome == FusionOutcome::Done)
        CBxPicBufAPI::CopyRect(&g_previewPicture, tool->working, {region.left, region.top}, {0, 0},
                               size);
    return outcome;
}

void ShowFusionPreview(FusionTool* tool, const FusionTask& task)
{
    if (tool->computing || IsEmptyRect(task.region) || SameTask(task, tool->last))
        return;
    tool->computing = true;
    KillTimer(tool->dialog, kPreviewTimer);
    RedrawWindow(tool->dialog, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
    const FusionOutcome outcome = ComputePreview(tool, task);
    if (outcome == FusionOutcome::Outdated)
        SetTimer(tool->dialog, kPreviewTimer, kRetryMs, nullptr);
    if (outcome == FusionOutcome::Done)
    {
        tool->last = task;
        SendMessageW(g_hwndMain, WM_APP_PREVIEW_READY, 0, 0);
        UpdateWindow(g_hwndMain);
    }
    TellUnusable(tool);
    tool->computing = false;
}

// The preview is refreshed first: the frame puts it over the result when a tool is cancelled. The
// frame hears of the end when the dialog has gone and the view has its place back.
static void GiveUp(HWND dialog)
{
    CBxPicBufAPI::Copy(&g_previewPicture, g_sourcePicture);
    SetStatusText(g_strings[76]);
    DestroyWindow(dialog);
    SetFocus(g_hwndMain);
    SendMessageW(g_hwndMain, WM_APP_TOOL_CANCELLED, 0, 0);
}

static FusionOutcome FuseResult(FusionTool* tool, const FusionTask& task)
{
    const ToolWaitCursor wait;
    return FuseWhole(&g_resultPicture, &tool->sources, task);
}

void FinishFusion(FusionTool* tool, const FusionTask& task)
{
    const HWND dialog = tool->dialog;
    const FusionOutcome outcome = FuseResult(tool, task);
    TellUnusable(tool);
    if (outcome != FusionOutcome::Done)
    {
        MessageBeep(MB_ICONHAND);
        GiveUp(dialog);
        return;
    }
    SetStatusText(g_strings[g_multiImageMode ? 56 : 81]);
    DestroyWindow(dialog);
    SetFocus(g_hwndMain);
    SendMessageW(g_hwndMain, WM_APP_TOOL_DONE, 0, 0);
}

void CancelFusion(FusionTool* tool)
{
    GiveUp(tool->dialog);
}
