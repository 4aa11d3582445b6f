#pragma once

// How a routine of ours ended that can end in more than one way. Where an interface fixes what its
// bool means, the bool stays, and whoever calls it turns it into one of these.
enum class [[nodiscard]] Outcome{
    Done,
    Failed,    // memory is short, or there is something wrong with what was asked
    Cancelled, // whoever asked for it did not want it any more
};

// Of interfaces whose bool is true on failure.
constexpr Outcome FailedIf(bool failed)
{
    return failed ? Outcome::Failed : Outcome::Done;
}
