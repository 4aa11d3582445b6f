#pragma once

#include <cstdio>
#include <filesystem>

// Writing a file so that its name holds either the old contents or the complete
// new ones, never anything between. The new contents go into a fresh file in
// the same folder, which takes the place of the target at the very end;
// whatever fails before leaves the target as it was.
//
//   ReplacingFile file;
//   if (BeginReplacing(&file, path)) ... write to file.stream, note failures in
//   file.error ... file.error ? CancelReplacing(&file) :
//   FinishReplacing(&file);
//
// Paths are save paths (SystemFiles.h). Errors are errno values on every
// system.
struct ReplacingFile
{
    FILE* stream = nullptr;        // open for writing and reading
    std::filesystem::path target;  // what will be replaced: the end of a chain of links
    std::filesystem::path sibling; // the file that is being written
    int error = 0;                 // first error seen; the caller adds its own
};

// Opens the sibling. False, with `error` set, when the target is a folder, a
// device, or not writable, or when the folder does not take new files. An
// existing target passes its permissions on to the new file.
bool BeginReplacing(ReplacingFile* file, const char* target);

// Brings the contents to the disk, closes the file and lets it take the
// target's place. False, with `error` set, when any of it fails or `error` was
// set before; the sibling is gone then. The stream is closed either way.
bool FinishReplacing(ReplacingFile* file);

// Closes and removes the sibling.
void CancelReplacing(ReplacingFile* file);
