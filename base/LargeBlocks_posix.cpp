#include "base/LargeBlocks.h"

#include <cstdlib>

void* SystemAllocBlock(size_t bytes, bool zeroed)
{
    return zeroed ? std::calloc(1, bytes) : std::malloc(bytes);
}

void SystemFreeBlock(void* block)
{
    std::free(block);
}
