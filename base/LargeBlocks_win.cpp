#include "base/LargeBlocks.h"

#include "base/Win.h"

void* SystemAllocBlock(size_t bytes, bool zeroed)
{
    return HeapAlloc(GetProcessHeap(), zeroed ? HEAP_ZERO_MEMORY : 0, bytes);
}

void SystemFreeBlock(void* block)
{
    if (block)
        HeapFree(GetProcessHeap(), 0, block);
}
