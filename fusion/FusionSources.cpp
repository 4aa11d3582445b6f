#include "fusion/FusionSources.h"

#include "fusion/FreeMemory.h"
#include "picture/ImageFile.h"

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

// What tells one state of a file from another.
struct FileState
{
    uint64_t size;
    int64_t time;
};

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

bool SameRect(const CBxRect<int>& a, const CBxRect<int>& b)
{
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
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
    sources->unusable.assign(paths.size(), false);
}

// The part of `from` (whose top-left corner is at `origin`) that `region` asks for, as a picture
// of its own.
static SourceRegionPtr CutOut(const SBxPicBuf& from, const CBxPoint<int>& origin,
                              const CBxRect<int>& region)
{
    const auto cut = std::make_shared<SourceRegion>();
    const int width = region.right - region.left, height = region.bottom - region.top;
    CBxPicBufAPI::ReinitHeap(&cut->picture, width, height, from.components, from.bitsPerComponent);
    if (!cut->picture.data)
        return nullptr;
    CBxPicBufAPI::CopyRect(&cut->picture, from, {0, 0},
                           {region.left - origin.x, region.top - origin.y}, {width, height});
    return cut;
}

// The region from what has been kept of this state of the file; null when it has to be read.
static SourceRegionPtr FindKept(FusionSources* sources, int index, const FileState& state,
                                const CBxRect<int>& region)
{
    KeptSource found = {};
    {
        const std::lock_guard<std::mutex> lock(sources->mutex);
        for (const KeptSource& kept : sources->kept)
            if (kept.index == index && kept.fileSize == state.size && kept.fileTime == state.time &&
                Contains(kept.region, region))
                found = kept;
    }
    if (!found.pixels || SameRect(found.region, region))
        return found.pixels;
    return CutOut(found.pixels->picture, {found.region.left, found.region.top}, region);
}

// Keeps the pixels if there is room. Regions that are no longer asked for, and old states of the
// same file, make way; those that are asked for now stay, since the next run wants all of them
// again and dropping one for the other would help neither.
static void Keep(FusionSources* sources, const KeptSource& fresh)
{
    const std::lock_guard<std::mutex> lock(sources->mutex);
    const int64_t bytes = fresh.pixels->picture.size;
    for (auto kept = sources->kept.begin(); kept != sources->kept.end();)
    {
        const bool full = sources->keptBytes + bytes > sources->budget;
        if (kept->index == fresh.index || (full && !SameRect(kept->region, fresh.region)))
        {
            sources->keptBytes -= kept->pixels->picture.size;
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

static bool Fits(const SBxPicBuf& picture, const SBxPicBuf& geometry)
{
    return picture.width == geometry.width && picture.height == geometry.height &&
           picture.components == geometry.components &&
           picture.bitsPerComponent == geometry.bitsPerComponent;
}

static std::shared_ptr<SourceRegion> ReadWhole(FusionSources* sources, int index)
{
    const auto whole = std::make_shared<SourceRegion>();
    SBxPicBuf alpha;
    CBxPicBufAPI::Init(&alpha);
    const bool failed =
        LoadPicturePair(sources->paths[size_t(index)].c_str(), &whole->picture, &alpha);
    CBxPicBufAPI::DoneHeap(&alpha);
    const std::lock_guard<std::mutex> lock(sources->mutex);
    ++sources->filesRead;
    return failed || !Fits(whole->picture, sources->geometry) ? nullptr : whole;
}

static SourceRegionPtr FindOrRead(FusionSources* sources, int index, const CBxRect<int>& region)
{
    FileState state = {};
    if (!StateOfFile(sources->paths[size_t(index)], &state))
        return nullptr;
    if (const SourceRegionPtr kept = FindKept(sources, index, state, region))
        return kept;
    const SourceRegionPtr whole = ReadWhole(sources, index);
    if (!whole)
        return nullptr;
    const CBxRect<int> all = WholeOf(whole->picture);
    const bool keepWhole =
        int64_t(whole->picture.size) * int64_t(sources->paths.size()) <= sources->budget;
    const SourceRegionPtr cut =
        SameRect(all, region) ? whole : CutOut(whole->picture, {0, 0}, region);
    const SourceRegionPtr toKeep = keepWhole ? whole : cut;
    if (toKeep)
        Keep(sources, {index, state.size, state.time, keepWhole ? all : region, toKeep});
    return cut;
}

SourceRegionPtr LoadFusionSource(FusionSources* sources, int index, const CBxRect<int>& region)
{
    const SourceRegionPtr pixels = FindOrRead(sources, index, region);
    const std::lock_guard<std::mutex> lock(sources->mutex);
    sources->unusable[size_t(index)] = !pixels;
    return pixels;
}
