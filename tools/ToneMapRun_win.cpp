#include "tools/ToneMapRun_win.h"

#include "tonemap/ToneMap.h"

static DWORD WINAPI RunToneMap(void* argument)
{
    const std::unique_ptr<std::shared_ptr<ToneMapRun>> held(
        static_cast<std::shared_ptr<ToneMapRun>*>(argument));
    ToneMapRun* run = held->get();
    RunControl control;
    control.progress = [run](int steps)
    { PostMessageW(run->dialog, WM_TONE_ADVANCED, WPARAM(steps), 0); };
    control.cancelled = [run] { return run->stop.load(); };
    const Outcome outcome = ToneMapPicture(run->output.Record(), run->input, kToneMapLevels,
                                           ToneMapParamsOf(run->numbers), control);
    if (run->stop || outcome != Outcome::Done)
        PostMessageW(run->dialog, WM_TONE_CANCELLED, outcome == Outcome::Failed, 0);
    else
        PostMessageW(run->dialog, WM_TONE_FINISHED, 0, 0);
    return 0;
}

// The thread holds the run as well: a message of its end may be answered before it has let go.
Outcome StartToneMapThread(const std::shared_ptr<ToneMapRun>& run)
{
    auto held = std::make_unique<std::shared_ptr<ToneMapRun>>(run);
    const HANDLE thread = CreateThread(nullptr, 0, RunToneMap, held.get(), 0, nullptr);
    if (!thread)
        return Outcome::Failed;
    (void)held.release(); // the thread's from here on
    CloseHandle(thread);
    return Outcome::Done;
}
