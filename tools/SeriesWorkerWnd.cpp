#include "tools/SeriesWorkerWnd.h"

#include "app/AppState.h"
#include "app/AppWindows_win.h"
#include "app/CommandIds.h"
#include "app/CommandsWnd.h"
#include "base/Format_win.h"
#include "text/Strings.h"
#include "tools/Messages.h"
#include "tools/ProgressPanelDlg.h"
#include "tools/SeriesFolder_win.h"
#include "tools/ToolDialogWnd.h"

#include <filesystem>

// The one series at a time. While the worker runs, only it touches the job.
struct SeriesJob
{
    SeriesRun run;
    std::wstring folder;
    HWND panel = nullptr;
    bool folderFailed = false;
    bool running = false; // until the frame has dealt with the end
};
static SeriesJob g_job;

// Threads for the denoising filter.
static unsigned AllowedProcessors()
{
    DWORD_PTR process = 0, system = 0;
    GetProcessAffinityMask(GetCurrentProcess(), &process, &system);
    return ProcessorCount(process, system);
}

static DWORD WINAPI SeriesThread(void*)
{
    SeriesRun* run = &g_job.run;
    g_job.folderFailed = !PrepareSeriesFolder(&g_job.folder);
    run->folder = std::filesystem::path(g_job.folder).u8string();
    if (!g_job.folderFailed)
        MakeSeriesFiles(run);
    if (g_cancelRequested || run->files.empty())
        PostMessageW(g_hwndMain, WM_APP_SERIES_CANCELLED, 0, 0);
    else if (run->kind == SeriesKind::Single)
        PostMessageW(g_hwndMain, WM_COMMAND, ID_OPEN_EXPOSURE_FUSION, 0);
    else
        SendMessageW(g_hwndMain, WM_COMMAND, ID_OPEN_POWER_FUSION, 0);
    return 0;
}

static void SetUpRun(SeriesKind kind, unsigned noiseLevel)
{
    SeriesRun* run = &g_job.run;
    run->kind = kind;
    run->source = g_sourcePicture;
    run->noiseLevel = noiseLevel;
    run->files.clear();
    run->control.denoiseThreads = AllowedProcessors();
    run->control.cancelRequested = [] { return g_cancelRequested.load(); };
    run->control.stopped = [] { return g_stopRequested.load(); };
    run->control.progress = [panel = g_job.panel](const SeriesProgress& progress)
    { ReportToPanel(panel, progress); };
}

void StartSeries(SeriesKind kind, unsigned noiseLevel)
{
    g_cancelRequested = false;
    g_stopRequested = false;
    g_workerBusy = true;
    g_toolBusy = true;
    g_job.running = true;
    SetStatusText(L"");
    g_job.panel = OpenProgressPanel(kind);
    SetUpRun(kind, noiseLevel);
    SendMessageW(g_hwndMain, WM_APP_CURSOR_WAIT, 0, 0);
    const HANDLE thread = CreateThread(nullptr, 0, SeriesThread, nullptr, 0, nullptr);
    if (thread)
        CloseHandle(thread);
    else
        PostMessageW(g_hwndMain, WM_APP_SERIES_CANCELLED, 0, 0);
}

static void TakeSeries()
{
    g_sourceCount = 0;
    g_sourceIndex = 0;
    for (const std::string& name : g_job.run.files)
    {
        const std::wstring path = g_job.folder + std::wstring(name.begin(), name.end());
        VcFormat(g_sourceFiles[g_sourceCount++], kSourcePathChars, L"%s", path.c_str());
    }
    g_job.run.files.clear();
}

// Why there is no series although nobody wanted it to stop.
static void TellFailure()
{
    if (g_cancelRequested || g_stopRequested)
        return;
    if (g_job.folderFailed)
        MessageBoxW(g_hwndMain,
                    VcFormatText(L"%s %s", Text(kTextCannotOpenFile), g_job.folder.c_str()).c_str(),
                    Text(kTextWarning), MB_OK | MB_ICONASTERISK);
    else
        WarnOfShortMemory();
}

bool SeriesWasAborted()
{
    return g_job.running && g_cancelRequested;
}

void EndSeries(bool ready)
{
    if (!g_job.running)
        return;
    g_job.running = false;
    g_toolBusy = false;
    g_workerBusy = false;
    SendMessageW(g_hwndMain, WM_APP_CURSOR_ARROW, 0, 0);
    CloseProgressPanel(g_job.panel);
    g_job.panel = nullptr;
    if (ready)
        TakeSeries();
    else
        TellFailure();
    g_cancelRequested = false;
    g_stopRequested = false;
}

TextId SeriesTitle()
{
    return g_job.run.kind == SeriesKind::DaylightDown ? kTextDaylightDownItem : kTextDaylightUpItem;
}
