#pragma once

#include "files/FileReplace.h"

#include <cstdint>

// What a replacement asks of the system. Errors are errno values, 0 for none.

// Follows links and sets the file's target, names and error.
void FindTarget(ReplacingFile* file, const char* target);

// Why the folder of the target takes no new files.
int CheckFolder(const std::filesystem::path& target);

// What killed processes have left in the folder of the target.
void RemoveAbandonedSiblings(const std::filesystem::path& target);

// Creates the sibling of a target that has been found. False, with `error` set, when it cannot.
bool OpenSibling(ReplacingFile* file);

// Removes what this process has not finished; for signal handlers.
void RemoveOwnSiblings();

// Full disks and broken network drives may show only when the contents really leave the memory.
int SyncToDisk(FILE* stream);

// What tells others that the sibling is not abandoned, so that it outlives the stream: taken before
// the stream is closed, dropped once the sibling has the target's place or is gone. -1 = nothing to
// drop.
int KeepLock(FILE* stream);
void DropLock(ReplacingFile* file);

// Gives the closed sibling the target's place.
int MoveOver(const ReplacingFile& file);

// A second name in the same folder for the file at the target, so that it can come back; empty when
// there is no such file.
int KeepOld(std::filesystem::path* old, const ReplacingFile& file);

// Whoever moves several files of a folder, or tidies it up, has it to himself.
class FolderTurn
{
public:
    FolderTurn(const std::filesystem::path& folder, bool wait);
    ~FolderTurn();
    FolderTurn(const FolderTurn&) = delete;
    FolderTurn& operator=(const FolderTurn&) = delete;
    bool Taken() const { return taken; } // also where the system has no such locks

private:
    bool taken = true;
    intptr_t handle = -1;
};
