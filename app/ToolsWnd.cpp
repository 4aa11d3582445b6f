#include "app/ToolsWnd.h"

#include "app/AppWindows_win.h"
#include "app/CommandsWnd.h"
#include "app/FileDialogsDlg.h"
#include "app/FrameView_win.h"
#include "app/Frame_win.h"
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
                                                 Picture* first, Picture* alpha)
{
    const ToolWaitCursor wait(FrameHost());
    const ToolProgress progress(FrameHost());
    const int count = int(paths.size());
    progress.Show(0, count);
    auto series = std::make_unique<FusionSources>();
    const bool loaded = LoadSilently(paths[0].c_str(), first, alpha);
    OpenFusionSources(series.get(), Utf8Paths(paths), *first, FusionSourceBudget());
    if (loaded)
        ReadFusionSources(series.get(), *first, RegionAt100(FrameHost(), *first),
                          [&](int source) { progress.Show(source, count); });
    else
        series->problems[0] = SourceProblem::Unreadable;
    return SeriesFits(*series, paths) ? std::move(series) : nullptr;
}

// The first source stands for the series: size, profile, metadata and proposed name.
static void OpenSeries(const std::vector<std::wstring>& paths, Picture first, Picture alpha,
                       std::unique_ptr<FusionSources> series)
{
    Document& document = FrameDocument();
    ForgetViewPicture(&g_view);
    TakeSource(&document, std::move(first), std::move(alpha), paths[0]);
    TakeSeries(&document, paths);
    document.series.chosenByUser = true;
    PictureOpened(&FrameCommands());
    EnableToolCommands(true);
    UpdateViewArea();
    ZoomTo100(&g_view, document.source);
    SetZoomBoxText(ZoomText(g_view.state.scale).c_str());
    ShowSource(document.source);
    ShowSourceStatus(kTextUseArrows);
    ShowExposureFusionDialog(FrameHost(), std::move(series));
}

// A wrong pick leaves the mode on and no series in it: nothing can be paged through, nothing else
// changes, and the next picture or tool ends it.
static void KeepModeWithoutSeries()
{
    FrameDocument().series = {};
    FrameDocument().series.chosenByUser = true;
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

    Picture first, alpha;
    if (auto series = ReadSeries(picked.paths, &first, &alpha))
        OpenSeries(picked.paths, std::move(first), std::move(alpha), std::move(series));
    else
        KeepModeWithoutSeries();
}

// What the single-image tools ask first. False ends the command.
static bool MayStartTool()
{
    if (!MayLoseResult())
        return false;
    Document& document = FrameDocument();
    document.series.chosenByUser = false; // a wrong pick; over a series these commands are off
    const int bits = document.source->bitsPerComponent;
    if (HasPicture(document.source) && (bits == 8 || bits == 16))
        return true;
    MessageBoxW(g_hwndMain, Text(kTextFormatNotSupported), L"", MB_OK);
    return false;
}

// The prompt runs the message loop: the frame may be gone when it returns.
static bool AskForNoiseLevel(unsigned* level)
{
    Document& document = FrameDocument();
    document.phase = DocumentPhase::ToolOpen;
    EnableToolCommands(false);
    const bool confirmed = RunNoiseLevelPrompt(FrameHost(), level) == kPromptConfirmed;
    if (!IsWindow(g_hwndMain))
        return false;
    document.phase = DocumentPhase::Idle;
    if (!confirmed)
        EnableToolCommands(true);
    return confirmed;
}

void StartSingleImage()
{
    unsigned noiseLevel = 0;
    if (!MayStartTool() || !AskForNoiseLevel(&noiseLevel))
        return;
    FrameDocument().unsaved = false;
    StartSeries(FrameHost(), SeriesKind::Single, noiseLevel);
}

static void StartDaylight(SeriesKind kind)
{
    if (!MayStartTool())
        return;
    FrameDocument().unsaved = false;
    StartSeries(FrameHost(), kind, 0);
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
        OpenSmartContrastDialog(FrameHost());
}

void StartToneMapping()
{
    if (MayStartTool())
        OpenToneMapDialog(FrameHost());
}
