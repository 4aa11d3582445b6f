#pragma once

#include "cli/CommandLine.h"

// What can be seen before the work begins: whether the results have a place to go to.

// A complaint about one of them; no complaint has no reason.
struct TargetComplaint
{
    std::string file, reason;
};

// A result is never written over a picture that the run reads, nor over another result, whatever
// names and links lead to them. Folders that are not there yet are no reason.
TargetComplaint CheckCollisions(const std::vector<std::string>& outputs,
                                const std::vector<std::string>& inputs);

// Whether the system lets the files be written: folder, rights, and what has that name already.
TargetComplaint CheckPlaces(const std::vector<std::string>& outputs);

// Tells the user; the exit code of wrong usage.
int FailTarget(const CliStreams& streams, const TargetComplaint& complaint);
