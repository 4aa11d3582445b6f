#include "base/FreeMemory.h"

#include <unistd.h>

int64_t FreeMemoryBytes()
{
    return int64_t(sysconf(_SC_AVPHYS_PAGES)) * int64_t(sysconf(_SC_PAGESIZE));
}
