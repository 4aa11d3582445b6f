#include "tools/ToneMapWorker_win.h"

#include "app/AppState.h"
#include "tools/Settings.h"
#include "tools/ToneMapModel.h"

// Outlives the message that starts the run; there is one run at a time.
struct ToneMapRun
{
    const SBxPicBuf* input;
    SBxPicBuf* output;
    HWND dialog;
};
static ToneMapRun g_run;

static HANDLE SettingsMutex()
{
    static const HANDLE mutex = CreateMutexW(nullptr, FALSE, nullptr);
    return mutex;
}

static bool Lock(DWORD milliseconds)
{
    const DWORD outcome = WaitForSingleObject(SettingsMutex(), milliseconds);
    return outcome == WAIT_OBJECT_0 || outcome == WAIT_ABANDONED;
}

bool LockToneMapSettings()
{
    return Lock(1000);
}

void UnlockToneMapSettings()
{
    ReleaseMutex(SettingsMutex());
}

static ToneMapNumbers NumbersInSettings()
{
    const bool locked = Lock(INFINITE);
    const ToneMapNumbers numbers = g_settings.toneMap;
    if (locked)
        UnlockToneMapSettings();
    return numbers;
}

static bool WantsToStop()
{
    return g_stopRequested || g_cancelRequested;
}

static DWORD WINAPI RunToneMap(void*)
{
    const ToneMapParams params = ToneMapParamsOf(NumbersInSettings());
    RunControl control;
    control.progress = [](int steps)
    { PostMessageW(g_run.dialog, WM_TONE_ADVANCED, WPARAM(steps), 0); };
    control.cancelled = WantsToStop;
    const int outcome = ToneMapPicture(g_run.output, *g_run.input, kToneMapLevels, params, control);
    if (WantsToStop() || outcome != kToneMapDone)
        PostMessageW(g_run.dialog, WM_TONE_CANCELLED, outcome == kToneMapOutOfMemory, 0);
    else
        PostMessageW(g_run.dialog, WM_TONE_FINISHED, 0, 0);
    return 0;
}

static bool StartThread(HWND dialog)
{
    if (!CopyPicture(&g_previewPicture, g_sourcePicture))
        return false;
    CBxPicBufAPI::ReinitHeap(&g_resultPicture, g_sourcePicture);
    if (!g_resultPicture.data)
        return false;
    g_run = {&g_previewPicture, &g_resultPicture, dialog};
    const HANDLE thread = CreateThread(nullptr, 0, RunToneMap, nullptr, 0, nullptr);
    if (thread)
        CloseHandle(thread);
    return thread != nullptr;
}

void StartToneMapWorker(HWND dialog)
{
    g_cancelRequested = false;
    g_stopRequested = false;
    g_toolBusy = true; // until the dialog has told the frame how it ended
    if (!StartThread(dialog))
        PostMessageW(dialog, WM_TONE_CANCELLED, 1, 0);
}
