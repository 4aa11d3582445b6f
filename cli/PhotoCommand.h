#pragma once

#include "cli/CommandLine.h"

#include "base/RunControl.h"
#include "picture/PicBuf.h"

// What all commands on single photographs have in common: where results go, reading, progress with
// the time that is left, writing, and going on after a photograph that could not be done.

// A running computation as the user sees it. Steps are the computation's own.
struct PhotoProgress
{
    std::function<void(double)> show; // the share that is done, 0..1
    std::function<bool()> stopped;    // Ctrl+C
};

// Makes `result` (empty; released by the caller) from the photograph. Gives the reason of a
// failure, empty when all is well. A stop counts as a failure; its reason does not matter.
using PhotoWork = std::function<std::string(SBxPicBuf* result, const SBxPicBuf& photo,
                                            const PhotoProgress& progress)>;

int RunOnPhotos(const char* command, const CliOptions& options, const CliStreams& streams,
                const PhotoWork& work);

// RunControl for a computation that advances `steps` times in all.
RunControl ControlOf(const PhotoProgress& progress, int steps);
