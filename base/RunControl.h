#pragma once

#include "base/Outcome.h"

#include <algorithm>
#include <atomic>
#include <functional>
#include <thread>

// How a long computation talks to whoever started it: two callbacks, either of which may be empty.
// Both are called on the thread that runs the computation; its helpers may be at work meanwhile.
struct RunControl
{
    std::function<void(int)> progress; // advance by that many steps of the computation's own range
    std::function<bool()> cancelled;   // polled often; once true it stays true

    void Advance(int steps) const
    {
        if (progress)
            progress(steps);
    }

    bool Cancelled() const { return cancelled && cancelled(); }
};

// Does body(first, end) for all rows, a few at a time, and asks before each few whether to stop: at
// least once in a hundredth of a second or so. Done or cancelled.
template <typename Body>
Outcome RunInRows(int rows, int rowSamples, const RunControl& control, Body body)
{
    constexpr int kSamplesAtOnce = 1 << 20;
    const int atOnce = std::max(kSamplesAtOnce / std::max(rowSamples, 1), 1);
    for (int first = 0; first < rows; first += atOnce)
    {
        if (control.Cancelled())
            return Outcome::Cancelled;
        body(first, std::min(first + atOnce, rows));
    }
    return Outcome::Done;
}

// The wish to stop inside of a parallel loop: the thread that runs the computation asks, the others
// see its answer.
class LoopStop
{
public:
    explicit LoopStop(const RunControl& asked) : control(asked) {}

    bool Wanted()
    {
        if (!stopped && std::this_thread::get_id() == caller && control.Cancelled())
            stopped = true;
        return stopped;
    }

private:
    const RunControl& control;
    const std::thread::id caller = std::this_thread::get_id();
    std::atomic<bool> stopped{false};
};
