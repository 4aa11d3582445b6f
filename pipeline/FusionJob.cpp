#include "pipeline/FusionJob.h"

#include "base/ShortMemory.h"

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
    Outcome outcome = Outcome::Done;
};

// Sums for the region. Those of the last preview still have their planes.
static Outcome SetUpSums(FusionSums* sums, const FusionSources& sources, const FusionTask& task)
{
    if (sums->acc.planes)
    {
        sums->acc.exposureMid = task.exposureMid;
        return Outcome::Done;
    }
    SBxPicBuf like = sources.geometry;
    like.width = task.region.right - task.region.left;
    like.height = task.region.bottom - task.region.top;
    return StartSums(sums, like, task.exposureMid);
}

using GivenUp = std::function<bool()>;

// Why a source did not come. Only one with a problem of its own is left out.
static bool LacksMemory(FusionSources* sources, int index)
{
    const std::lock_guard<std::mutex> lock(sources->mutex);
    return sources->problems[size_t(index)] == SourceProblem::None;
}

// That region of the sources, one in memory at a time.
static SourceFeed FeedOf(FusionSources* sources, const SourceRange& range,
                         const CBxRect<int>& region, const GivenUp& givenUp)
{
    return [=](const SourceTaker& take)
    {
        for (int i = range.first; i < range.end; ++i)
        {
            if (givenUp())
                return Outcome::Cancelled;
            const SourceRegionPtr source = LoadFusionSource(sources, i, region);
            if (!source && LacksMemory(sources, i))
                return Outcome::Failed;
            const Outcome taken = source ? take(*source) : Outcome::Done;
            if (taken != Outcome::Done)
                return taken;
        }
        return Outcome::Done;
    };
}

static Outcome AddPrepared(FusionShare* share, FusionSources* sources, const GivenUp& givenUp)
{
    FusionSums* sums = share->sums.get();
    std::vector<PreparedSourcePtr> loaded;
    for (int i = share->range.first; i < share->range.end; ++i)
    {
        if (givenUp())
            return Outcome::Cancelled;
        if (PreparedSourcePtr source = LoadPreparedSource(sources, i, sums->acc))
            loaded.push_back(std::move(source));
        else if (LacksMemory(sources, i))
            return Outcome::Failed;
    }
    sums->sources = int(loaded.size());
    if (loaded.empty())
        return Outcome::Done;
    const bool stopped = VcSumPrepared(&sums->acc, loaded, givenUp);
    return stopped ? Outcome::Cancelled : Outcome::Done;
}

static void AddShare(FusionShare* share, FusionSources* sources, const FusionTask& task,
                     const GivenUp& givenUp)
{
    const auto add = [&]
    {
        if (SetUpSums(share->sums.get(), *sources, task) != Outcome::Done)
            return Outcome::Failed;
        if (!sources->prepared.empty())
            return AddPrepared(share, sources, givenUp);
        return AddFeed(share->sums.get(), FeedOf(sources, share->range, task.region, givenUp));
    };
    share->outcome = FailWithoutMemory(add); // an exception would end a helper, and all with it
}

// The shares in the order of their sources.
static Outcome BlendShares(SBxPicBuf* result, const std::vector<FusionShare>& shares)
{
    std::vector<FusionSums*> sums;
    for (const FusionShare& share : shares)
    {
        if (share.outcome != Outcome::Done)
            return share.outcome;
        sums.push_back(share.sums.get());
    }
    return BlendSums(result, sums);
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

static Outcome FuseShares(SBxPicBuf* result, FusionSources* sources, const FusionTask& task,
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
    const Outcome outcome = stop ? Outcome::Cancelled : BlendShares(result, shares);
    KeepSums(sources, &shares);
    return outcome;
}

Outcome FuseRegion(SBxPicBuf* result, FusionSources* sources, const FusionTask& task,
                   const std::function<bool()>& outdated)
{
    if (!CanFuse(task))
        return Outcome::Failed;
    return FailWithoutMemory([&] { return FuseShares(result, sources, task, outdated); });
}

Outcome FuseWhole(SBxPicBuf* result, FusionSources* sources, const FusionTask& task,
                  const std::function<void(int)>& comes)
{
    FusionTask whole = task;
    whole.region = {0, 0, sources->geometry.width, sources->geometry.height};
    if (!CanFuse(whole))
        return Outcome::Failed;
    int next = 0;
    const GivenUp tellAndGoOn = [&]
    {
        if (comes)
            comes(next++);
        return false;
    };
    const auto fuse = [&]
    {
        return FuseFeed(result, sources->geometry, whole.exposureMid,
                        FeedOf(sources, {0, whole.sources}, whole.region, tellAndGoOn));
    };
    return FailWithoutMemory(fuse);
}
