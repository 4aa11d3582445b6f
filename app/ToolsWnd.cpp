#include "app/ToolsWnd.h"

#include "app/AppState.h"
#include "app/AppWindows_win.h"
#include "app/CommandsWnd.h"
#include "app/FileDialogsDlg.h"
#include "app/FrameView_win.h"
#include "app/SourcePaging_win.h"
#include "app/ToolbarWnd.h"
#include "base/Format_win.h"
#include "text/Strings.h"
#include "tools/ExposureFusionDlg.h"
#include "tools/FusionToolWnd.h"
#include "tools/NoisePromptDlg.h"
#include "tools/SeriesWorkerWnd.h"
#include "tools/SmartContrastDlg.h"
#include "tools/ToneMapDlg.h"
#include "tools/ToolDialogWnd.h"

#include <algorithm>
#include <cwchar>
#include <filesystem>

static void Warn(const wchar_t* text)
{
    MessageBoxW(g_hwndMain, text, Text(kTextWarning), MB_OK | MB_ICONASTERISK);
}

// Tells what is wrong with the first source that does not load or does not fit to the first one.
static bool SeriesFits(const FusionSources& series, const std::vector<std::wstring>& paths)
{
    for (size_t i = 0; i < paths.size(); ++i)
    {
        if (series.problems[i] == SourceProblem::Unreadable)
            Warn(VcFormatText(L"%s %s", Text(kTextCannotOpenFile), paths[i].c_str()).c_str());
        else if (series.problems[i] == SourceProblem::Different)
            Warn(Text(kTextSameResolution));
        else
            continue;
        return false;
    }
    return true;
}

static void StoreSeries(const std::vector<std::wstring>& paths)
{
    g_sourceCount = int32_t(std::min(paths.size(), size_t(kMaxSources)));
    g_sourceIndex = 0;
    for (int32_t i = 0; i < g_sourceCount; ++i)
        VcFormat(g_sourceFiles[i], kSourcePathChars, L"%s", paths[size_t(i)].c_str());
}

static std::vector<std::string> Utf8Paths(const std::vector<std::wstring>& paths)
{
    std::vector<std::string> utf8;
    for (const std::wstring& path : paths)
        utf8.push_back(std::filesystem::path(path).u8string());
    return utf8;
}

// The series with its first source, or null when the user has been told what is wrong with it. What
// has been read to check it serves the dialog as well.
static std::unique_ptr<FusionSources> ReadSeries(const std::vector<std::wstring>& paths,
                                                 SBxPicBuf* first, SBxPicBuf* alpha)
{
    const ToolWaitCursor wait;
    const ToolProgress progress;
    const int count = int(paths.size());
    progress.Show(0, count);
    auto series = std::make_unique<FusionSources>();
    const bool loaded = LoadSilently(paths[0].c_str(), first, alpha);
    OpenFusionSources(series.get(), Utf8Paths(paths), *first, FusionSourceBudget());
    if (loaded)
        ReadFusionSources(series.get(), *first, RegionAt100(*first),
                          [&](int source) { progress.Show(source, count); });
    else
        series->problems[0] = SourceProblem::Unreadable;
    return SeriesFits(*series, paths) ? std::move(series) : nullptr;
}

// The first source stands for the series: size, profile, metadata and proposed name.
static void OpenSeries(const std::vector<std::wstring>& paths, SBxPicBuf* first, SBxPicBuf* alpha,
                       std::unique_ptr<FusionSources> series)
{
    ForgetViewPicture(&g_view);
    TakeSource(first, alpha, paths[0].c_str());
    g_multiImageMode = true;
    StoreSeries(paths);
    EnableToolCommands(true);
    UpdateViewArea();
    ZoomTo100(&g_view, g_sourcePicture);
    SetZoomBoxText(ZoomText(g_view.state.scale).c_str());
    ShowSource(g_sourcePicture);
    ShowSourceStatus(kTextUseArrows);
    ShowExposureFusionDialog(std::move(series));
}

// A wrong pick leaves the mode on and no series in it: nothing can be paged through, nothing else
// changes, and the next picture or tool ends it.
static void KeepModeWithoutSeries()
{
    g_multiImageMode = true;
    g_sourceCount = 0;
    g_sourceIndex = 0;
}

void StartMultiImage()
{
    if (!MayLoseResult())
        return;
    const PickedFiles picked = AskForSeries(g_hwndMain);
    if (picked.tooMany)
        Warn(Text(kTextCannotOpenSelected));
    if (picked.onlyOne)
        Warn(Text(kTextSelectSeveral));
    if (picked.tooMany || picked.onlyOne)
        KeepModeWithoutSeries();
    if (picked.paths.empty())
        return;

    SBxPicBuf first, alpha;
    CBxPicBufAPI::Init(&first);
    CBxPicBufAPI::Init(&alpha);
    if (auto series = ReadSeries(picked.paths, &first, &alpha))
        OpenSeries(picked.paths, &first, &alpha, std::move(series));
    else
        KeepModeWithoutSeries();
    CBxPicBufAPI::DoneHeap(&first);
    CBxPicBufAPI::DoneHeap(&alpha);
}

// What the single-image tools ask first. False ends the command.
static bool MayStartTool()
{
    if (!MayLoseResult())
        return false;
    g_multiImageMode = false; // of a wrong pick; over a series these commands are off
    const int bits = g_sourcePicture.bitsPerComponent;
    if (HasPicture(g_sourcePicture) && (bits == 8 || bits == 16))
        return true;
    MessageBoxW(g_hwndMain, Text(kTextFormatNotSupported), L"", MB_OK);
    return false;
}

// The prompt runs the message loop: the frame may be gone when it returns.
static bool AskForNoiseLevel(unsigned* level)
{
    g_workerBusy = true;
    EnableToolCommands(false);
    const bool confirmed = RunNoiseLevelPrompt(level) == kPromptConfirmed;
    if (!IsWindow(g_hwndMain))
        return false;
    g_workerBusy = false;
    if (!confirmed)
        EnableToolCommands(true);
    return confirmed;
}

void StartSingleImage()
{
    unsigned noiseLevel = 0;
    if (!MayStartTool() || !AskForNoiseLevel(&noiseLevel))
        return;
    g_resultUnsaved = false;
    StartSeries(SeriesKind::Single, noiseLevel);
}

static void StartDaylight(SeriesKind kind)
{
    if (!MayStartTool())
        return;
    g_resultUnsaved = false;
    StartSeries(kind, 0);
}

void StartDaylightUp()
{
    StartDaylight(SeriesKind::DaylightUp);
}

void StartDaylightDown()
{
    StartDaylight(SeriesKind::DaylightDown);
}

void StartSmartContrast()
{
    if (MayStartTool())
        OpenSmartContrastDialog();
}

void StartToneMapping()
{
    if (MayStartTool())
        OpenToneMapDialog();
}
