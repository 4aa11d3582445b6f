#include "app/ToolsWnd.h"

#include "app/AppState.h"
#include "app/AppWindows_win.h"
#include "app/CommandsWnd.h"
#include "app/FileDialogsDlg.h"
#include "app/Format_win.h"
#include "app/FrameView_win.h"
#include "app/SourcePaging_win.h"
#include "app/Strings.h"
#include "app/ToolbarWnd.h"
#include "fusion/ExposureFusionDlg.h"
#include "multiscale/NoisePromptDlg.h"
#include "multiscale/SeriesWorkerWnd.h"
#include "multiscale/SmartContrastDlg.h"
#include "multiscale/ToneMapDlg.h"

#include <algorithm>
#include <cwchar>

static void Warn(const wchar_t* text)
{
    MessageBoxW(g_hwndMain, text, g_strings[3], MB_OK | MB_ICONASTERISK);
}

// Checks that a file of the series loads and fits to the first one; `first` is empty for that one.
static bool CheckSeriesFile(const std::wstring& path, SBxPicBuf* first, SBxPicBuf* alpha)
{
    SBxPicBuf picture, plane;
    CBxPicBufAPI::Init(&picture);
    CBxPicBufAPI::Init(&plane);
    const bool loaded = LoadSilently(path.c_str(), &picture, &plane);
    const bool fits =
        loaded &&
        (!first->data || (picture.width == first->width && picture.height == first->height &&
                          picture.components == first->components &&
                          picture.bitsPerComponent == first->bitsPerComponent));
    if (!loaded)
        Warn(VcFormatText(L"%s %s", g_strings[33], path.c_str()).c_str());
    else if (!fits)
        Warn(g_strings[54]);
    if (fits && !first->data)
    {
        std::swap(*first, picture);
        std::swap(*alpha, plane);
    }
    CBxPicBufAPI::DoneHeap(&picture);
    CBxPicBufAPI::DoneHeap(&plane);
    return fits;
}

static void StoreSeries(const std::vector<std::wstring>& paths)
{
    g_sourceCount = int32_t(std::min(paths.size(), size_t(kMaxSources)));
    g_sourceIndex = 0;
    for (int32_t i = 0; i < g_sourceCount; ++i)
        VcFormat(g_sourceFiles[i], kSourcePathChars, L"%s", paths[size_t(i)].c_str());
}

void StartMultiImage()
{
    if (!MayLoseResult())
        return;
    const PickedFiles picked = AskForSeries(g_hwndMain);
    if (picked.tooMany)
        Warn(g_strings[15]);
    if (picked.onlyOne)
        Warn(g_strings[77]);
    if (picked.paths.empty())
        return;

    SBxPicBuf first, alpha;
    CBxPicBufAPI::Init(&first);
    CBxPicBufAPI::Init(&alpha);
    for (const std::wstring& path : picked.paths)
        if (!CheckSeriesFile(path, &first, &alpha))
        {
            CBxPicBufAPI::DoneHeap(&first);
            CBxPicBufAPI::DoneHeap(&alpha);
            return;
        }
    // The first source stands for the series: size, profile, metadata and proposed name.
    ForgetViewPicture(&g_view);
    TakeSource(&first, &alpha, picked.paths[0].c_str());
    g_multiImageMode = true;
    StoreSeries(picked.paths);
    EnableToolCommands(true);
    UpdateViewArea();
    ZoomTo100(&g_view, g_sourcePicture);
    SetZoomBoxText(ZoomText(g_view.state.scale).c_str());
    ShowSource(g_sourcePicture);
    ShowSourceStatus(31);
    ShowExposureFusionDialog();
}

// What the single-image tools ask first. False ends the command.
static bool MayStartTool()
{
    if (!MayLoseResult())
        return false;
    const int bits = g_sourcePicture.bitsPerComponent;
    if (HasPicture(g_sourcePicture) && (bits == 8 || bits == 16))
        return true;
    MessageBoxW(g_hwndMain, g_strings[41], L"", MB_OK);
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
    g_multiImageMode = false;
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
