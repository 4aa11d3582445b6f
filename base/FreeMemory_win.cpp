#include "base/FreeMemory.h"

#include "base/Win.h"

int64_t FreeMemoryBytes()
{
    MEMORYSTATUSEX memory = {};
    memory.dwLength = sizeof memory;
    return GlobalMemoryStatusEx(&memory) ? int64_t(memory.ullAvailPhys) : 0;
}

int64_t AvailableMemoryBytes()
{
    // What the page file can hold counts as well: pictures that are not at hand may go there.
    MEMORYSTATUSEX memory = {};
    memory.dwLength = sizeof memory;
    return GlobalMemoryStatusEx(&memory) ? int64_t(memory.ullAvailPageFile) : 0;
}
