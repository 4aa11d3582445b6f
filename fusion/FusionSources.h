#pragma once

#include "picture/PicBuf.h"

#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

// The series of a fusion dialog, decoded. What has been read stays in memory while the dialog is
// open, so that moving a slider reads no file a second time. When the whole series fits into the
// budget, whole pictures stay and panning reads nothing either; otherwise only the regions asked
// for do. A file that has changed since (size or time) is read again; one that has gone is gone.

// Pixels of one source. Shared with whoever is fusing them, so that they may be dropped meanwhile.
struct SourceRegion
{
    SBxPicBuf picture = {};

    SourceRegion() = default;
    SourceRegion(const SourceRegion&) = delete;
    SourceRegion& operator=(const SourceRegion&) = delete;
    ~SourceRegion() { CBxPicBufAPI::DoneHeap(&picture); }
};
using SourceRegionPtr = std::shared_ptr<const SourceRegion>;

struct KeptSource
{
    int index;
    uint64_t fileSize;
    int64_t fileTime;
    CBxRect<int> region;
    SourceRegionPtr pixels;
};

struct FusionSources
{
    std::vector<std::string> paths; // UTF-8
    SBxPicBuf geometry = {};        // what every source has to look like; no data
    int64_t budget = 0;             // bytes of pixels that may stay

    std::mutex mutex; // of all that follows
    std::list<KeptSource> kept;
    int64_t keptBytes = 0;
    int filesRead = 0;
    std::vector<bool> unusable; // the source did not load or did not fit when it was asked for last
};

// Half of the memory that is free now: the fusion itself needs some as well.
int64_t FusionSourceBudget();

void OpenFusionSources(FusionSources* sources, const std::vector<std::string>& paths,
                       const SBxPicBuf& geometry, int64_t budget);

// That region of a source (picture coordinates, inside of the picture), or null when the file does
// not load, differs in kind from the others, or memory is short. Any thread.
SourceRegionPtr LoadFusionSource(FusionSources* sources, int index, const CBxRect<int>& region);

bool SameRect(const CBxRect<int>& a, const CBxRect<int>& b);
