#include "tools/SeriesWorkerWnd.h"

#include "base/Format_win.h"
#include "text/Strings.h"
#include "tools/Messages.h"
#include "tools/ProgressPanelDlg.h"
#include "tools/SeriesFolder_win.h"
#include "tools/ToolCommandIds.h"
#include "tools/ToolDialogWnd.h"

#include <atomic>
#include <filesystem>

// The one series at a time. While the worker runs, only it touches the job, but for the wishes.
struct SeriesJob
{
    const ToolHost* host = nullptr;
    std::atomic<bool> aborted{false}; // by the panel's button, or since the program closes
    std::atomic<bool> stopped{false}; // since the program closes: denoising is given up, too
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
    g_job.folderFailed = PrepareSeriesFolder(&g_job.folder) != Outcome::Done;
    run->folder = std::filesystem::path(g_job.folder).u8string();
    if (!g_job.folderFailed)
        MakeSeriesFiles(run);
    const HWND frame = g_job.host->frame;
    if (g_job.aborted || run->files.empty())
        PostMessageW(frame, WM_APP_SERIES_CANCELLED, 0, 0);
    else if (run->kind == SeriesKind::Single)
        PostMessageW(frame, WM_COMMAND, ID_OPEN_EXPOSURE_FUSION, 0);
    else
        SendMessageW(frame, WM_COMMAND, ID_OPEN_POWER_FUSION, 0);
    return 0;
}

static void SetUpRun(SeriesKind kind, unsigned noiseLevel)
{
    SeriesRun* run = &g_job.run;
    run->kind = kind;
    run->source = g_job.host->document->source;
    run->noiseLevel = noiseLevel;
    run->files.clear();
    run->control.denoiseThreads = AllowedProcessors();
    run->control.cancelRequested = [] { return g_job.aborted.load(); };
    run->control.stopped = [] { return g_job.stopped.load(); };
    run->control.progress = [panel = g_job.panel](const SeriesProgress& progress)
    { ReportToPanel(panel, progress); };
}

// For good: the program closes.
static void StopSeries()
{
    g_job.aborted = true;
    g_job.stopped = true;
}

void StartSeries(const ToolHost& host, SeriesKind kind, unsigned noiseLevel)
{
    g_job.host = &host;
    g_job.aborted = false;
    g_job.stopped = false;
    BeginJob(host.document, StopSeries);
    g_job.running = true;
    host.setStatusText(L"");
    g_job.panel = OpenProgressPanel(host, kind, &g_job.aborted);
    SetUpRun(kind, noiseLevel);
    SendMessageW(host.frame, WM_APP_CURSOR_WAIT, 0, 0);
    const HANDLE thread = CreateThread(nullptr, 0, SeriesThread, nullptr, 0, nullptr);
    if (thread)
        CloseHandle(thread);
    else
        PostMessageW(host.frame, WM_APP_SERIES_CANCELLED, 0, 0);
}

static void GiveSeries()
{
    std::vector<std::wstring> files;
    for (const std::string& name : g_job.run.files)
        files.push_back(g_job.folder + std::wstring(name.begin(), name.end()));
    TakeSeries(g_job.host->document, std::move(files));
    g_job.run.files.clear();
}

// Why there is no series although nobody wanted it to stop.
static void TellFailure()
{
    const HWND frame = g_job.host->frame;
    if (g_job.aborted || g_job.stopped)
        return;
    if (g_job.folderFailed)
        MessageBoxW(frame,
                    VcFormatText(L"%s %s", Text(kTextCannotOpenFile), g_job.folder.c_str()).c_str(),
                    Text(kTextWarning), MB_OK | MB_ICONASTERISK);
    else
        WarnOfShortMemory(frame);
}

bool SeriesWasAborted()
{
    return g_job.running && g_job.aborted;
}

void EndSeries(bool ready)
{
    if (!g_job.running)
        return;
    g_job.running = false;
    EndWork(g_job.host->document);
    SendMessageW(g_job.host->frame, WM_APP_CURSOR_ARROW, 0, 0);
    CloseProgressPanel(g_job.panel);
    g_job.panel = nullptr;
    if (ready)
        GiveSeries();
    else
        TellFailure();
}

TextId SeriesTitle()
{
    return g_job.run.kind == SeriesKind::DaylightDown ? kTextDaylightDownItem : kTextDaylightUpItem;
}
