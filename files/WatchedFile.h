#pragma once

#include <cstddef>
#include <cstdio>

// A file that an encoder writes to. Encoders mostly do not say that a write fell short, so it is
// noted here; after that they are kept going with the good news that they expect, and write
// nothing.
struct WatchedFile
{
    FILE* stream = nullptr;
    int error = 0; // errno of the first write that failed
};

void WriteWatched(WatchedFile* file, const void* bytes, size_t count);
