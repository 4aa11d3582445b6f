#pragma once

#include "pipeline/DecodeSource.h"
#include "pipeline/FusionFeed.h"
#include "pipeline/PreparedSource.h"

#include <cstdint>
#include <functional>
#include <list>
#include <mutex>
#include <string>
#include <vector>

// The series of a fusion dialog, decoded. What has been read stays in memory while the dialog is
// open, so that moving a slider reads no file a second time. When the whole series fits into the
// budget, whole pictures stay and panning reads nothing either; otherwise only the regions asked
// for do. Where there is room for them, too, the regions stay as previews need them: taken apart.
// A file that has changed since (size or time) is read again; one that has gone is gone.

// Pixels of one source. Shared with whoever is fusing them, so that they may be dropped meanwhile.
using SourceRegionPtr = std::shared_ptr<const Picture>;

// What tells one state of a file from another.
struct FileState
{
    uint64_t size;
    int64_t time;
};

struct KeptSource
{
    int index;
    FileState file;
    CBxRect<int> region;
    SourceRegionPtr pixels;
};

struct KeptPrepared
{
    FileState file;
    PreparedSourcePtr source; // null = not made yet
};

// Why a source takes no part.
enum class SourceProblem
{
    None,
    Unreadable,
    Different, // size, components or bits are not those of the others
};

struct FusionSources
{
    std::vector<std::string> paths; // UTF-8
    SBxPicBuf geometry = {};        // what every source has to look like; no data
    int64_t budget = 0;             // bytes of pixels that may stay
    SourceStep step;                // what is kept has been through it

    std::mutex mutex; // of all that follows
    std::list<KeptSource> kept;
    int64_t keptBytes = 0;
    int filesRead = 0;
    std::vector<SourceProblem> problems; // of each source when it was looked at last
    CBxRect<int> preparedRegion = {};    // of all that is prepared
    std::vector<KeptPrepared> prepared;  // by source; empty = there is no room for that region

    // Of the last preview, for the next one. Not guarded: of the thread that asks for previews.
    std::vector<std::unique_ptr<FusionSums>> sums;
};

// Half of the memory that is free now: the fusion itself needs some as well.
int64_t FusionSourceBudget();

void OpenFusionSources(FusionSources* sources, const std::vector<std::string>& paths,
                       const SBxPicBuf& geometry, int64_t budget);

// That region of a source (picture coordinates, inside of the picture), or null when the file does
// not load, differs in kind from the others, or memory is short. Any thread.
SourceRegionPtr LoadFusionSource(FusionSources* sources, int index, const CBxRect<int>& region);

// Gets ready for previews of that region: what is prepared of another one goes, and `prepared`
// tells whether there is room for this one. The thread that asks for previews, while no other
// reads.
void PrepareForRegion(FusionSources* sources, const CBxRect<int>& region);

// The same as LoadFusionSource, taken apart, with levels like the accumulator's; for the region
// that has been prepared for. Any thread.
PreparedSourcePtr LoadPreparedSource(FusionSources* sources, int index,
                                     const VcFusionAccumulator& acc);

// Reads the whole series on several threads and notes the problems. What there is room for, whole
// pictures or that region, is not read again. The first source has been read by the caller. `comes`
// may be empty; it is told the number of each source that the calling thread begins to read.
void ReadFusionSources(FusionSources* sources, const SBxPicBuf& first, const CBxRect<int>& region,
                       const std::function<void(int)>& comes = nullptr);

// Notes the problems that show without reading pixels, of sources that have not been read.
void CheckFusionSources(FusionSources* sources);
