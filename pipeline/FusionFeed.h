#pragma once

#include "base/Outcome.h"
#include "fusion/FusionAccumulator.h"

#include <functional>
#include <vector>

// The one way from sources to their fusion, for the window's jobs and for all commands of the
// command line: a feed hands its sources over one after the other, each is added to sums, the sums
// of all threads are joined, and the blend is written.
//
//   SourceFeed -> AddFeed -> FusionSums, one a thread -> BlendSums -> picture

// An accumulator that frees itself.
struct FusionSums
{
    VcFusionAccumulator acc = {};
    int sources = 0; // that have been added

    FusionSums() = default;
    FusionSums(const FusionSums&) = delete;
    FusionSums& operator=(const FusionSums&) = delete;
    ~FusionSums() { Free(); }

    void Free() { VcFreeAccumulator(&acc); }
};

// Empty sums for pictures like `geometry`. Fails when memory is short.
Outcome StartSums(FusionSums* sums, const SBxPicBuf& geometry, unsigned exposureMid);

// Adds a source, which stays with the feed. After anything but Done no other one is wanted.
using SourceTaker = std::function<Outcome(const SBxPicBuf& source)>;

// Hands its sources over, in the order of adding, and gives back what the taker said last, or why
// there is no next source.
using SourceFeed = std::function<Outcome(const SourceTaker& take)>;

// Adds what the feed has, on the calling thread. `stop` may be null; it is asked while a source is
// being added, and true cancels. Sums that are not Done are worthless.
Outcome AddFeed(FusionSums* sums, const SourceFeed& feed, FusionStop stop = nullptr);

// Joins the sums in their order, into the first that has any source, and writes the blend. Fails
// when none has, the picture's kind is another one, or memory is short.
Outcome BlendSums(SBxPicBuf* result, const std::vector<FusionSums*>& sums);

// All of it on one thread. An empty result gets its block when everything has been added.
Outcome FuseFeed(SBxPicBuf* result, const SBxPicBuf& geometry, unsigned exposureMid,
                 const SourceFeed& feed, FusionStop stop = nullptr);
