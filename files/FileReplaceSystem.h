#pragma once

#include "files/FileReplace.h"

#include <cstdint>

// What a replacement asks of the system. Errors are errno values, 0 for none.

// BeginReplacing, which depends on the system from its first step to its last.
bool OpenSibling(ReplacingFile* file, const char* target);

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

// Whether FinishTogether is at its renames.
bool AreFilesMoving();

// Whether this process has not tidied that folder up yet; asking counts as doing it. A folder may
// have a hundred thousand files.
bool IsFirstVisit(const std::filesystem::path& folder);
