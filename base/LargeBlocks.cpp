#include "base/LargeBlocks.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <mutex>
#include <new>

constexpr size_t kKeptFrom = size_t(1) << 20;   // smaller blocks are quick to get anyway
constexpr size_t kKeptInAll = size_t(96) << 20; // the scratch of one 12-megapixel photograph

// Tiles and levels differ by a few rows; a block serves all sizes that round up to the same eighth
// of a power of two.
static size_t RoundedUp(size_t bytes)
{
    if (bytes < kKeptFrom || bytes > kKeptInAll)
        return bytes;
    size_t eighth = kKeptFrom / 8;
    while (bytes > 16 * eighth)
        eighth *= 2;
    return (bytes + eighth - 1) / eighth * eighth;
}

struct KeptBlock
{
    void* block;
    size_t bytes;
};

// The oldest comes first.
struct KeptBlocks
{
    std::mutex mutex;
    std::deque<KeptBlock> blocks;
    size_t bytes = 0;
};

// Never destroyed: pictures may be freed while the program ends.
static KeptBlocks& Kept()
{
    static KeptBlocks* const kept = new KeptBlocks;
    return *kept;
}

static void* TakeKept(size_t bytes)
{
    KeptBlocks& kept = Kept();
    const std::lock_guard<std::mutex> lock(kept.mutex);
    const auto it = std::find_if(kept.blocks.rbegin(), kept.blocks.rend(),
                                 [=](const KeptBlock& b) { return b.bytes == bytes; });
    if (it == kept.blocks.rend())
        return nullptr;
    void* block = it->block;
    kept.bytes -= bytes;
    kept.blocks.erase(std::next(it).base());
    return block;
}

static void DropOldest(KeptBlocks* kept)
{
    SystemFreeBlock(kept->blocks.front().block);
    kept->bytes -= kept->blocks.front().bytes;
    kept->blocks.pop_front();
}

// When memory is short, what is kept makes room.
static void* AllocFresh(size_t bytes, bool zeroed)
{
    if (void* block = SystemAllocBlock(bytes, zeroed))
        return block;
    KeptBlocks& kept = Kept();
    {
        const std::lock_guard<std::mutex> lock(kept.mutex);
        while (!kept.blocks.empty())
            DropOldest(&kept);
    }
    return SystemAllocBlock(bytes, zeroed);
}

void* VcAllocBlock(size_t bytes, bool zeroed)
{
    const size_t rounded = RoundedUp(bytes);
    void* block = bytes >= kKeptFrom ? TakeKept(rounded) : nullptr;
    if (!block)
        return AllocFresh(rounded, zeroed);
    if (zeroed)
        std::memset(block, 0, bytes);
    return block;
}

static void KeepBlock(KeptBlocks* kept, const KeptBlock& block)
{
    const std::lock_guard<std::mutex> lock(kept->mutex);
    while (kept->bytes + block.bytes > kKeptInAll)
        DropOldest(kept);
    kept->blocks.push_back(block);
    kept->bytes += block.bytes;
}

void VcFreeBlock(void* block, size_t bytes)
{
    const size_t rounded = RoundedUp(bytes);
    if (!block || bytes < kKeptFrom || rounded > kKeptInAll)
    {
        SystemFreeBlock(block);
        return;
    }
    try // destructors call this
    {
        KeepBlock(&Kept(), {block, rounded});
    }
    catch (const std::bad_alloc&)
    {
        SystemFreeBlock(block);
    }
}
