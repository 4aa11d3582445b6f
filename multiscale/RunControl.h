#pragma once

#include <functional>

// How a long computation talks to whoever started it: two callbacks, either of which may be empty.
// Both are called on the thread that runs the computation, never from inside a parallel loop.
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
