#pragma once

#include "files/FileReplace.h"

// What a replacement asks of the system. Errors are errno values, 0 for none.

// BeginReplacing, which depends on the system from its first step to its last.
bool OpenSibling(ReplacingFile* file, const char* target);

// Full disks and broken network drives may show only when the contents really leave the memory.
int SyncToDisk(FILE* stream);

// What tells others that the sibling is not abandoned, so that it outlives the stream: taken before
// the stream is closed, dropped once the sibling has the target's place. -1 = nothing to drop.
int KeepLock(FILE* stream);
void DropLock(int lock);

// Gives the closed sibling the target's place.
int MoveOver(const ReplacingFile& file);
