#include "picture/FloatPlane.h"

#include "base/LargeBlocks.h"

#include <new>

// Stands before the first sample; as long as a cache line, so that samples lie in it as the block
// does. Blocks themselves are only aligned to what the system's allocator gives.
struct PlaneHeader
{
    size_t bytes;
    char rest[64 - sizeof(size_t)];
};

static float* AllocPlane(int64_t samples, bool zeroed)
{
    const size_t bytes = sizeof(PlaneHeader) + size_t(samples) * sizeof(float);
    void* block = VcAllocBlock(bytes, zeroed);
    return block ? reinterpret_cast<float*>(new (block) PlaneHeader{bytes, {}} + 1) : nullptr;
}

float* VcAllocPlane(int64_t samples)
{
    return AllocPlane(samples, true);
}

float* VcAllocUnsetPlane(int64_t samples)
{
    return AllocPlane(samples, false);
}

void VcFreePlane(float* plane)
{
    if (!plane)
        return;
    PlaneHeader* header = reinterpret_cast<PlaneHeader*>(plane) - 1;
    VcFreeBlock(header, header->bytes);
}
