#pragma once

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

// Writing a file so that its name holds either the old contents or the complete new ones, never
// anything between. The new contents go into a fresh file in the same folder, which takes the place
// of the target at the very end; whatever fails before leaves the target as it was.
//
//   ReplacingFile file;
//   if (BeginReplacing(&file, path)) ... write to file.stream, note failures in
//   file.error ... file.error ? CancelReplacing(&file) :
//   FinishReplacing(&file);
//
// A process that is killed leaves its sibling behind. The first save of the next one into the same
// folder removes it; the siblings of whoever still writes stay, on this machine or another.
//
// Paths are save paths (SystemFiles.h). Errors are errno values on every system.
struct ReplacingFile
{
    FILE* stream = nullptr;        // open for writing and reading
    std::filesystem::path target;  // what will be replaced: the end of a chain of links
    std::filesystem::path sibling; // the file that is being written
    int error = 0;                 // first error seen; the caller adds its own
    int otherNames = 0;            // names (hard links) of the old file that go on meaning it
    bool (*stopped)() = nullptr;   // if it says so when all is written, the target stays: ECANCELED
    int lock = -1;                 // outlives the stream; see KeepLock
    int mark = -1;                 // what AbandonReplacing knows the sibling by
};

// What would keep a target from being written: its folder is not there or takes no new files, it is
// a folder or a device, or nobody may write it. 0 = nothing that shows beforehand.
int CheckTarget(const char* target);

// Opens the sibling. False, with `error` set, for what CheckTarget finds, and when the sibling
// cannot be created. An existing target passes its permissions and extended attributes on.
bool BeginReplacing(ReplacingFile* file, const char* target);

// Closes the file, once its contents are on the disk if `toDisk`. It keeps its sibling's name.
// False, with `error` set, when any of it fails or `error` was set before; the sibling is gone
// then. The stream is closed either way.
bool CompleteReplacing(ReplacingFile* file, bool toDisk = true);

// Lets it take the target's place as well.
bool FinishReplacing(ReplacingFile* file, bool toDisk = true);

// Complete files of one folder take their targets' places together or not at all; the second of two
// processes that do this in one folder waits for the first. The number of the file that failed,
// whose `error` is set (all siblings are gone then, and all targets are what they were), or -1.
int FinishTogether(std::vector<ReplacingFile>* files);

// Closes and removes the sibling.
void CancelReplacing(ReplacingFile* file);

// Removes all siblings of this process, which is about to end; for signal handlers. False while
// FinishTogether is moving files: to end now would leave half of them.
bool AbandonReplacing();

// The number of the process that a sibling's name tells, 0 when it is no such name:
// ".plenoviz-PROCESS-COUNTER.tmp", both in decimal digits.
template <typename Letter>
unsigned long SiblingProcess(const std::basic_string<Letter>& name)
{
    const std::string start = ".plenoviz-", end = ".tmp";
    if (name.size() < start.size() + end.size() ||
        !std::equal(start.begin(), start.end(), name.begin()) ||
        !std::equal(end.rbegin(), end.rend(), name.rbegin()))
        return 0;
    unsigned long process = 0;
    size_t i = start.size();
    for (; i < name.size() && name[i] >= '0' && name[i] <= '9'; ++i)
        process = process * 10 + (unsigned long)(name[i] - '0');
    const size_t dash = i++;
    while (i < name.size() && name[i] >= '0' && name[i] <= '9')
        ++i;
    const bool counted = name[dash] == '-' && i > dash + 1 && i + end.size() == name.size();
    return counted ? process : 0;
}
