#include "pipeline/FusionJob.h"

#include "base/ShortMemory.h"
#include "fusion/FusionAccumulator.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <thread>

static constexpr int kSurroundings = 256;                // picture pixels around what is seen
static constexpr int kTwoThreads = 5, kThreeThreads = 9; // sources from which on they are used

CBxRect<int> FusionRegionOf(const ImageView& view, int width, int height)
{
    return PictureInView(view, {width, height}, kSurroundings);
}

bool SameTask(const FusionTask& a, const FusionTask& b)
{
    return SameRect(a.region, b.region) && a.sources == b.sources && a.exposureMid == b.exposureMid;
}

std::vector<SourceRange> FusionRangesOf(int sources)
{
    if (sources < kTwoThreads)
        return {{0, sources}};
    if (sources < kThreeThreads)
        return {{0, sources / 2}, {sources / 2, sources}};
    const int third = sources / 3;
    return {{0, third}, {third, 2 * third}, {2 * third, sources}};
}

// What one thread adds up. A share without any source that can be used has nothing to merge.
struct FusionShare
{
    SourceRange range = {0, 0};
    std::unique_ptr<FusionSums> sums = std::make_unique<FusionSums>();
    bool filled = false;
    bool failed = false;
};

// An accumulator for the region. One of the last preview still has its planes.
static bool SetUpSums(FusionSums* sums, const FusionSources& sources, const FusionTask& task)
{
    sums->acc.exposureMid = task.exposureMid;
    if (sums->acc.planes)
        return false;
    SBxPicBuf like = sources.geometry;
    like.width = task.region.right - task.region.left;
    like.height = task.region.bottom - task.region.top;
    return VcInitAccumulator(&sums->acc, like, task.exposureMid);
}

using GivenUp = std::function<bool()>;

// Why a source did not come. Only one with a problem of its own is left out.
static bool LacksMemory(FusionSources* sources, int index)
{
    const std::lock_guard<std::mutex> lock(sources->mutex);
    return sources->problems[size_t(index)] == SourceProblem::None;
}

// One source in memory at a time.
static void AddSources(FusionShare* share, FusionSources* sources, const FusionTask& task,
                       const GivenUp& givenUp)
{
    for (int i = share->range.first; i < share->range.end && !share->failed; ++i)
    {
        if (givenUp && givenUp())
            return;
        if (const SourceRegionPtr source = LoadFusionSource(sources, i, task.region))
        {
            share->failed = VcAccumulateImage(&share->sums->acc, *source);
            share->filled = true;
        }
        else
            share->failed = LacksMemory(sources, i);
    }
}

static void AddPrepared(FusionShare* share, FusionSources* sources, const GivenUp& givenUp)
{
    std::vector<PreparedSourcePtr> loaded;
    for (int i = share->range.first; i < share->range.end; ++i)
    {
        if (givenUp())
            return;
        if (PreparedSourcePtr source = LoadPreparedSource(sources, i, share->sums->acc))
            loaded.push_back(std::move(source));
        else if (LacksMemory(sources, i))
        {
            share->failed = true;
            return;
        }
    }
    share->filled = !loaded.empty() && !VcSumPrepared(&share->sums->acc, loaded, givenUp);
}

static void AddShare(FusionShare* share, FusionSources* sources, const FusionTask& task,
                     const GivenUp& givenUp)
{
    const auto add = [&]
    {
        share->failed = SetUpSums(share->sums.get(), *sources, task);
        if (share->failed)
            return true;
        if (sources->prepared.empty())
            AddSources(share, sources, task, givenUp);
        else
            AddPrepared(share, sources, givenUp);
        return share->failed;
    };
    share->failed = FailsOrLacksMemory(add); // an exception would end a helper, and all with it
}

// The shares in the order of their sources, into the first that has anything.
static FusionOutcome ComposeShares(SBxPicBuf* result, std::vector<FusionShare>* shares)
{
    VcFusionAccumulator* sum = nullptr;
    for (FusionShare& share : *shares)
    {
        if (share.failed)
            return FusionOutcome::Failed;
        if (!share.filled)
            continue;
        if (sum)
            VcMergeAccumulator(sum, share.sums->acc);
        else
            sum = &share.sums->acc;
    }
    if (!sum || uint32_t(result->components) != sum->channels || VcComposeResult(result, *sum))
        return FusionOutcome::Failed;
    return FusionOutcome::Done;
}

// Accumulators of the preview before, as far as there are any, and back when it is done. They stay
// only where there is room for prepared sources, too.
static std::vector<FusionShare> TakeShares(FusionSources* sources, int count)
{
    const std::vector<SourceRange> ranges = FusionRangesOf(count);
    std::vector<FusionShare> shares(ranges.size());
    for (size_t i = 0; i < ranges.size(); ++i)
    {
        shares[i].range = ranges[i];
        if (i < sources->sums.size())
            shares[i].sums = std::move(sources->sums[i]);
    }
    sources->sums.clear();
    return shares;
}

static void KeepSums(FusionSources* sources, std::vector<FusionShare>* shares)
{
    for (FusionShare& share : *shares)
        if (!sources->prepared.empty())
            sources->sums.push_back(std::move(share.sums));
}

// Counts the helpers that are still adding, so that waiting for them can look around meanwhile.
struct Helpers
{
    std::mutex mutex;
    std::condition_variable ended;
    int running = 0;
};

static void WaitForHelpers(Helpers* helpers, const std::function<bool()>& givenUp)
{
    std::unique_lock<std::mutex> lock(helpers->mutex);
    while (helpers->running > 0)
    {
        helpers->ended.wait_for(lock, std::chrono::milliseconds(15));
        lock.unlock();
        givenUp();
        lock.lock();
    }
}

// Only sizes that the engine takes have a band to fuse.
static bool CanFuse(const FusionTask& task)
{
    const CBxRect<int>& region = task.region;
    return task.sources > 0 && !IsEmptyRect(region) &&
           VcFusionAcceptsSize(region.right - region.left, region.bottom - region.top);
}

// A thread for the work. False when the system has no more of them to give.
template <typename Work>
static bool StartHelper(std::vector<std::thread>* threads, Work work)
{
    try
    {
        threads->emplace_back(work);
        return true;
    }
    catch (const std::exception&)
    {
        return false;
    }
}

static FusionOutcome FuseShares(SBxPicBuf* result, FusionSources* sources, const FusionTask& task,
                                const std::function<bool()>& outdated)
{
    std::atomic<bool> stop = false;
    const GivenUp stopped = [&stop] { return stop.load(); };
    const GivenUp askAround = [&]
    {
        if (!stop && outdated && outdated())
            stop = true;
        return stop.load();
    };

    PrepareForRegion(sources, task.region);
    std::vector<FusionShare> shares = TakeShares(sources, task.sources);
    Helpers helpers;
    helpers.running = int(shares.size()) - 1;
    std::vector<std::thread> threads;
    threads.reserve(shares.size());
    for (size_t i = 1; i < shares.size(); ++i)
    {
        const auto help = [&, share = &shares[i]]
        {
            AddShare(share, sources, task, stopped);
            const std::lock_guard<std::mutex> lock(helpers.mutex);
            --helpers.running;
            helpers.ended.notify_one();
        };
        if (!StartHelper(&threads, help))
            help();
    }
    AddShare(&shares[0], sources, task, askAround);
    WaitForHelpers(&helpers, askAround);
    for (std::thread& thread : threads)
        thread.join();
    const FusionOutcome outcome = stop ? FusionOutcome::Outdated : ComposeShares(result, &shares);
    KeepSums(sources, &shares);
    return outcome;
}

FusionOutcome FuseRegion(SBxPicBuf* result, FusionSources* sources, const FusionTask& task,
                         const std::function<bool()>& outdated)
{
    FusionOutcome outcome = FusionOutcome::Failed;
    const auto fuse = [&]
    {
        if (CanFuse(task))
            outcome = FuseShares(result, sources, task, outdated);
        return outcome == FusionOutcome::Failed;
    };
    return FailsOrLacksMemory(fuse) ? FusionOutcome::Failed : outcome;
}

FusionOutcome FuseWhole(SBxPicBuf* result, FusionSources* sources, const FusionTask& task,
                        const std::function<void(int)>& comes)
{
    FusionTask whole = task;
    whole.region = {0, 0, sources->geometry.width, sources->geometry.height};
    int next = 0;
    const GivenUp tellAndGoOn = [&]
    {
        if (comes)
            comes(next++);
        return false;
    };
    const auto fuse = [&]
    {
        if (!CanFuse(whole))
            return true;
        std::vector<FusionShare> shares(1);
        shares[0].range = {0, whole.sources};
        shares[0].failed = SetUpSums(shares[0].sums.get(), *sources, whole);
        if (!shares[0].failed)
            AddSources(&shares[0], sources, whole, tellAndGoOn);
        return ComposeShares(result, &shares) == FusionOutcome::Failed;
    };
    return FailsOrLacksMemory(fuse) ? FusionOutcome::Failed : FusionOutcome::Done;
}
