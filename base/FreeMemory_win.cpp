#include "base/FreeMemory.h"

#include "base/Win.h"

int64_t FreeMemoryBytes()
{
    MEMORYSTATUSEX memory = {};
    memory.dwLength = sizeof memory;
    return GlobalMemoryStatusEx(&memory) ? int64_t(memory.ullAvailPhys) : 0;
}
