#include "fusion/FusionJob.h"

#include "fusion/FusionAccumulator.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <thread>

static constexpr int kSurroundings = 256;                // picture pixels around what is seen
static constexpr int kTwoThreads = 5, kThreeThreads = 9; // sources from which on they are used

// Clamped before the conversion, since far out at a small zoom the doubles leave the int range.
static int Inside(double value, int limit)
{
    return int(std::clamp(value, 0.0, double(limit)));
}

CBxRect<int> FusionRegionOf(const ImageView& view, int width, int height)
{
    const CBxPicMap map = MapOfView(view.state);
    double left, top, right, bottom;
    map.MapPointDstToSrc(&left, &top, view.area.left, view.area.top);
    map.MapPointDstToSrc(&right, &bottom, view.area.right, view.area.bottom);
    return {Inside(std::floor(left) - kSurroundings, width),
            Inside(std::floor(top) - kSurroundings, height),
            Inside(std::ceil(right) + kSurroundings, width),
            Inside(std::ceil(bottom) + kSurroundings, height)};
}

bool IsEmptyRect(const CBxRect<int>& rect)
{
    return rect.right <= rect.left || rect.bottom <= rect.top;
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

// What one thread adds up. Set up with the first source that can be used: a share without any has
// no accumulator to merge.
struct FusionShare
{
    SourceRange range = {0, 0};
    VcFusionAccumulator sums = {};
    bool started = false;
    bool failed = false;

    ~FusionShare()
    {
        if (started)
            VcFreeAccumulator(&sums);
    }
};

static void AddSource(FusionShare* share, const SBxPicBuf& source, unsigned exposureMid)
{
    if (!share->started)
    {
        share->failed = VcInitAccumulator(&share->sums, source, exposureMid);
        share->started = !share->failed;
    }
    share->failed = share->failed || VcAccumulateImage(&share->sums, source);
}

static void AddShare(FusionShare* share, FusionSources* sources, const FusionTask& task,
                     const std::function<bool()>& givenUp)
{
    for (int i = share->range.first; i < share->range.end && !share->failed; ++i)
    {
        if (givenUp && givenUp())
            return;
        if (const SourceRegionPtr source = LoadFusionSource(sources, i, task.region))
            AddSource(share, source->picture, task.exposureMid);
    }
}

// The shares in the order of their sources, into the first that has anything.
static FusionOutcome ComposeShares(SBxPicBuf* result, std::vector<FusionShare>* shares)
{
    FusionShare* sum = nullptr;
    for (FusionShare& share : *shares)
    {
        if (share.failed)
            return FusionOutcome::Failed;
        if (!share.started)
            continue;
        if (sum)
            VcMergeAccumulator(&sum->sums, share.sums);
        else
            sum = &share;
    }
    if (!sum || uint32_t(result->components) != sum->sums.channels ||
        VcComposeResult(result, sum->sums))
        return FusionOutcome::Failed;
    return FusionOutcome::Done;
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

FusionOutcome FuseRegion(SBxPicBuf* result, FusionSources* sources, const FusionTask& task,
                         const std::function<bool()>& outdated)
{
    if (!CanFuse(task))
        return FusionOutcome::Failed;
    std::atomic<bool> stop = false;
    const auto stopped = [&stop] { return stop.load(); };
    const auto askAround = [&]
    {
        if (!stop && outdated && outdated())
            stop = true;
        return stop.load();
    };

    const std::vector<SourceRange> ranges = FusionRangesOf(task.sources);
    std::vector<FusionShare> shares(ranges.size());
    for (size_t i = 0; i < ranges.size(); ++i)
        shares[i].range = ranges[i];
    Helpers helpers;
    helpers.running = int(shares.size()) - 1;
    std::vector<std::thread> threads;
    for (size_t i = 1; i < shares.size(); ++i)
        threads.emplace_back(
            [&, share = &shares[i]]
            {
                AddShare(share, sources, task, stopped);
                const std::lock_guard<std::mutex> lock(helpers.mutex);
                --helpers.running;
                helpers.ended.notify_one();
            });
    AddShare(&shares[0], sources, task, askAround);
    WaitForHelpers(&helpers, askAround);
    for (std::thread& thread : threads)
        thread.join();
    return stop ? FusionOutcome::Outdated : ComposeShares(result, &shares);
}

FusionOutcome FuseWhole(SBxPicBuf* result, FusionSources* sources, const FusionTask& task)
{
    FusionTask whole = task;
    whole.region = {0, 0, sources->geometry.width, sources->geometry.height};
    if (!CanFuse(whole))
        return FusionOutcome::Failed;
    std::vector<FusionShare> shares(1);
    shares[0].range = {0, whole.sources};
    AddShare(&shares[0], sources, whole, nullptr);
    return ComposeShares(result, &shares);
}
