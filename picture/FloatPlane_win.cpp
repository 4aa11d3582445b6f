#include "picture/FloatPlane.h"

#include <windows.h>

float* VcAllocPlane(int64_t samples)
{
    const size_t bytes = size_t(samples) * sizeof(float);
    return static_cast<float*>(HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, bytes));
}

void VcFreePlane(float* plane)
{
    if (plane)
        HeapFree(GetProcessHeap(), 0, plane);
}
