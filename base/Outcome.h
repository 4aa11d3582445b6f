#pragma once

// How a routine of ours ended that can end in more than one way. Where an interface fixes what its
// bool means, the bool stays, and whoever calls it turns it into one of these.
enum class [[nodiscard]] Outcome{
    Done,
    Failed,    // memory is short, or there is something wrong with what was asked
    Cancelled, // whoever asked for it did not want it any more
};

// One step after the other until one of them is not done; tells how that ended. Steps are
// functions.
template <typename... Steps>
Outcome InTurn(Steps&&... steps)
{
    Outcome outcome = Outcome::Done;
    (void)(((outcome = steps()) == Outcome::Done) && ...);
    return outcome;
}

// Of interfaces whose bool is true on failure.
constexpr Outcome FailedIf(bool failed)
{
    return failed ? Outcome::Failed : Outcome::Done;
}
