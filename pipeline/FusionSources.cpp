#include "pipeline/FusionSources.h"

#include "base/FreeMemory.h"
#include "base/ShortMemory.h"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <iterator>
#include <thread>

namespace fs = std::filesystem;

static constexpr int kMostShares = 3;       // accumulators of one preview
static constexpr unsigned kMostReaders = 4; // threads; each holds a whole picture and its file

static bool StateOfFile(const std::string& path, FileState* state)
{
    std::error_code error;
    const fs::path file = fs::u8path(path);
    state->size = fs::file_size(file, error);
    if (error)
        return false;
    state->time = int64_t(fs::last_write_time(file, error).time_since_epoch().count());
    return !error;
}

static bool SameFile(const FileState& a, const FileState& b)
{
    return a.size == b.size && a.time == b.time;
}

static bool Contains(const CBxRect<int>& outer, const CBxRect<int>& inner)
{
    return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
           inner.bottom <= outer.bottom;
}

static CBxRect<int> WholeOf(const SBxPicBuf& picture)
{
    return {0, 0, picture.width, picture.height};
}

int64_t FusionSourceBudget()
{
    return FreeMemoryBytes() / 2;
}

void OpenFusionSources(FusionSources* sources, const std::vector<std::string>& paths,
                       const SBxPicBuf& geometry, int64_t budget)
{
    sources->paths = paths;
    sources->geometry = geometry;
    sources->geometry.data = nullptr;
    sources->budget = budget;
    sources->kept.clear();
    sources->keptBytes = 0;
    sources->filesRead = 0;
    sources->problems.assign(paths.size(), SourceProblem::None);
    sources->preparedRegion = {};
    sources->prepared.clear();
    sources->sums.clear();
}

// The part of `from` (whose top-left corner is at `origin`) that `region` asks for, as a picture
// of its own.
static SourceRegionPtr CutOut(const SBxPicBuf& from, const CBxPoint<int>& origin,
                              const CBxRect<int>& region)
{
    const int width = region.right - region.left, height = region.bottom - region.top;
    Picture cut(width, height, from.components, from.bitsPerComponent);
    if (cut.Empty())
        return nullptr;
    CBxPicBufAPI::CopyRect(cut.Record(), from, {0, 0},
                           {region.left - origin.x, region.top - origin.y}, {width, height});
    return std::make_shared<Picture>(std::move(cut));
}

// The region from what has been kept of this state of the file; null when it has to be read.
static SourceRegionPtr FindKept(FusionSources* sources, int index, const FileState& state,
                                const CBxRect<int>& region)
{
    KeptSource found = {};
    {
        const std::lock_guard<std::mutex> lock(sources->mutex);
        for (const KeptSource& kept : sources->kept)
            if (kept.index == index && SameFile(kept.file, state) && Contains(kept.region, region))
                found = kept;
    }
    if (!found.pixels || SameRect(found.region, region))
        return found.pixels;
    return CutOut(*found.pixels, {found.region.left, found.region.top}, region);
}

// Keeps the pixels if there is room. Regions that are no longer asked for, and old states of the
// same file, make way; those that are asked for now stay, since the next run wants all of them
// again and dropping one for the other would help neither.
static void Keep(FusionSources* sources, const KeptSource& fresh)
{
    const std::lock_guard<std::mutex> lock(sources->mutex);
    const int64_t bytes = (*fresh.pixels)->size;
    for (auto kept = sources->kept.begin(); kept != sources->kept.end();)
    {
        const bool full = sources->keptBytes + bytes > sources->budget;
        if (kept->index == fresh.index || (full && !SameRect(kept->region, fresh.region)))
        {
            sources->keptBytes -= (*kept->pixels)->size;
            kept = sources->kept.erase(kept);
        }
        else
            ++kept;
    }
    if (sources->keptBytes + bytes > sources->budget)
        return;
    sources->kept.push_back(fresh);
    sources->keptBytes += bytes;
}

static void ForgetKept(FusionSources* sources, int index)
{
    const std::lock_guard<std::mutex> lock(sources->mutex);
    for (auto kept = sources->kept.begin(); kept != sources->kept.end();)
    {
        const bool forget = kept->index == index;
        sources->keptBytes -= forget ? (*kept->pixels)->size : 0;
        kept = forget ? sources->kept.erase(kept) : std::next(kept);
    }
}

static int64_t BytesOfSeries(const FusionSources& sources, const CBxRect<int>& region)
{
    const SBxPicBuf& like = sources.geometry;
    return PictureBytes(region.right - region.left, region.bottom - region.top, like.components,
                        like.bitsPerComponent) *
           int64_t(sources.paths.size());
}

static bool KeepsWholePictures(const FusionSources& sources)
{
    return BytesOfSeries(sources, WholeOf(sources.geometry)) <= sources.budget;
}

static void NoteProblem(FusionSources* sources, int index, SourceProblem problem)
{
    const std::lock_guard<std::mutex> lock(sources->mutex);
    sources->problems[size_t(index)] = problem;
}

static SourceRegionPtr ReadWhole(FusionSources* sources, int index)
{
    DecodedSource source = DecodeSource(sources->paths[size_t(index)], index, sources->step);
    source.alpha.Free();
    const bool failed = source.problem != LoadProblem::None;
    const std::lock_guard<std::mutex> lock(sources->mutex);
    ++sources->filesRead;
    SourceProblem* problem = &sources->problems[size_t(index)];
    if (failed && source.problem != LoadProblem::OutOfMemory)
        *problem = SourceProblem::Unreadable;
    else if (!failed && !IsLike(source.picture, sources->geometry))
        *problem = SourceProblem::Different;
    if (failed || *problem != SourceProblem::None)
        return nullptr;
    return std::make_shared<Picture>(std::move(source.picture));
}

static SourceRegionPtr FindOrRead(FusionSources* sources, int index, const FileState& state,
                                  const CBxRect<int>& region)
{
    if (const SourceRegionPtr kept = FindKept(sources, index, state, region))
        return kept;
    const SourceRegionPtr whole = ReadWhole(sources, index);
    if (!whole)
        return nullptr;
    const CBxRect<int> all = WholeOf(*whole);
    const bool keepWhole = KeepsWholePictures(*sources);
    const SourceRegionPtr cut = SameRect(all, region) ? whole : CutOut(*whole, {0, 0}, region);
    if (keepWhole)
        Keep(sources, {index, state, all, whole});
    else if (cut)
        Keep(sources, {index, state, region, cut});
    return cut;
}

// The state of the source's file; notes whether there is one.
static bool LookAtFile(FusionSources* sources, int index, FileState* state)
{
    const bool found = StateOfFile(sources->paths[size_t(index)], state);
    NoteProblem(sources, index, found ? SourceProblem::None : SourceProblem::Unreadable);
    return found;
}

SourceRegionPtr LoadFusionSource(FusionSources* sources, int index, const CBxRect<int>& region)
{
    FileState state = {};
    return LookAtFile(sources, index, &state) ? FindOrRead(sources, index, state, region) : nullptr;
}

void PrepareForRegion(FusionSources* sources, const CBxRect<int>& region)
{
    if (SameRect(region, sources->preparedRegion))
        return;
    SBxPicBuf like = sources->geometry;
    like.width = region.right - region.left;
    like.height = region.bottom - region.top;
    const int64_t wholes =
        KeepsWholePictures(*sources) ? BytesOfSeries(*sources, WholeOf(sources->geometry)) : 0;
    const int64_t bytes = VcPreparedBytes(like) * int64_t(sources->paths.size());
    sources->preparedRegion = region;
    sources->prepared.clear();
    sources->sums.clear(); // other sizes
    if (wholes + bytes + kMostShares * VcAccumulatorBytes(like) <= sources->budget)
        sources->prepared.resize(sources->paths.size());
}

PreparedSourcePtr LoadPreparedSource(FusionSources* sources, int index,
                                     const VcFusionAccumulator& acc)
{
    KeptPrepared* kept = &sources->prepared[size_t(index)]; // of nobody else but who asks for it
    FileState state = {};
    if (!LookAtFile(sources, index, &state))
        return nullptr;
    if (kept->source && SameFile(kept->file, state))
        return kept->source;
    kept->source.reset();
    if (const SourceRegionPtr cut = FindOrRead(sources, index, state, sources->preparedRegion))
        *kept = {state, VcPrepareSource(acc, *cut)};
    if (kept->source && !KeepsWholePictures(*sources))
        ForgetKept(sources, index); // one copy is enough
    return kept->source;
}

static void KeepFirst(FusionSources* sources, const SBxPicBuf& first, const CBxRect<int>& region)
{
    FileState state = {};
    const CBxRect<int> part = KeepsWholePictures(*sources) ? WholeOf(first) : region;
    if (!LookAtFile(sources, 0, &state) || IsEmptyRect(part))
        return;
    if (const SourceRegionPtr copy = CutOut(first, {0, 0}, part))
        Keep(sources, {0, state, part, copy});
}

void ReadFusionSources(FusionSources* sources, const SBxPicBuf& first, const CBxRect<int>& region,
                       const std::function<void(int)>& comes)
{
    KeepFirst(sources, first, region);
    std::atomic<int> next = 1;
    const auto readOne = [&](int index) {
        return FailWithoutMemory([&]
                                 { return FailedIf(!LoadFusionSource(sources, index, region)); });
    };
    const auto read = [&](const std::function<void(int)>& tell)
    {
        for (int i = next++; i < int(sources->paths.size()); i = next++)
        {
            if (tell)
                tell(i);
            (void)readOne(i); // one that lacks memory is read again when it is fused
        }
    };
    std::vector<std::thread> helpers;
    try
    {
        for (unsigned i = 1; i < std::min(std::thread::hardware_concurrency(), kMostReaders); ++i)
            helpers.emplace_back(read, nullptr);
    }
    catch (const std::exception&) // no memory or no threads: those that there are do it
    {
    }
    read(comes);
    for (std::thread& helper : helpers)
        helper.join();
}

void CheckFusionSources(FusionSources* sources)
{
    const auto isKept = [&](int index)
    {
        return std::any_of(sources->kept.begin(), sources->kept.end(),
                           [=](const KeptSource& kept) { return kept.index == index; });
    };
    for (int i = 0; i < int(sources->paths.size()); ++i)
        if (!isKept(i) && CheckPictureFile(sources->paths[size_t(i)].c_str()) != LoadProblem::None)
            NoteProblem(sources, i, SourceProblem::Unreadable);
}
