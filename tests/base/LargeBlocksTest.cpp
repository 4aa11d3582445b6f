#include "base/LargeBlocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <vector>

// What stands below the kept blocks, in the place of the system's, for the whole program: it counts
// what it has given out.
static std::mutex g_mutex;
static std::map<void*, size_t> g_given;
static size_t g_bytesGiven = 0, g_mostBytes = SIZE_MAX;
static int g_asked = 0;

void* SystemAllocBlock(size_t bytes, bool zeroed)
{
    const std::lock_guard<std::mutex> lock(g_mutex);
    ++g_asked;
    if (g_bytesGiven + bytes > g_mostBytes)
        return nullptr;
    void* block = zeroed ? std::calloc(1, bytes) : std::malloc(bytes);
    g_given[block] = bytes;
    g_bytesGiven += bytes;
    return block;
}

void SystemFreeBlock(void* block)
{
    const std::lock_guard<std::mutex> lock(g_mutex);
    if (!block)
        return;
    g_bytesGiven -= g_given.at(block);
    g_given.erase(block);
    std::free(block);
}

constexpr size_t kMegabyte = size_t(1) << 20;

// Blocks of all those sizes, taken first and freed then.
static void TakeAndFree(const std::vector<size_t>& sizes)
{
    std::vector<void*> blocks;
    for (const size_t bytes : sizes)
        blocks.push_back(VcAllocBlock(bytes, false));
    for (size_t i = 0; i < sizes.size(); ++i)
        VcFreeBlock(blocks[i], sizes[i]);
}

TEST(LargeBlocks, AreKeptUpToALimitAndTheOldestGoFirst)
{
    const size_t before = g_bytesGiven;
    TakeAndFree(std::vector<size_t>(30, 8 * kMegabyte));
    EXPECT_LE(g_bytesGiven, before + 96 * kMegabyte);
    EXPECT_GE(g_bytesGiven, before + 80 * kMegabyte);
    TakeAndFree({40 * kMegabyte, 36 * kMegabyte, 20 * kMegabyte});
    TakeAndFree({200 * kMegabyte}); // never kept, and nothing goes for it
    const int asked = g_asked;
    for (int round = 0; round < 30; ++round)
        TakeAndFree({36 * kMegabyte, 40 * kMegabyte, 20 * kMegabyte});
    EXPECT_EQ(g_asked, asked) << "the last ones are used again";
    EXPECT_LE(g_bytesGiven, before + 96 * kMegabyte);
}

TEST(LargeBlocks, ServeTheNextOfAboutTheirSizeAndAreZeroedOnRequest)
{
    void* block = VcAllocBlock(5 * kMegabyte, false);
    std::memset(block, 99, 5 * kMegabyte);
    VcFreeBlock(block, 5 * kMegabyte);
    const size_t fewer = 5 * kMegabyte - 3000;
    const int asked = g_asked;
    auto* again = static_cast<unsigned char*>(VcAllocBlock(fewer, true));
    EXPECT_EQ(g_asked, asked);
    EXPECT_EQ(std::count(again, again + fewer, 0), std::ptrdiff_t(fewer));
    VcFreeBlock(again, fewer);
    const size_t given = g_bytesGiven;
    for (const size_t small : {size_t(1), kMegabyte - 1})
        TakeAndFree({small});
    EXPECT_EQ(g_bytesGiven, given) << "small ones go back";
    VcFreeBlock(nullptr, 5 * kMegabyte);
}

TEST(LargeBlocks, ThatAreKeptMakeRoomWhenMemoryIsShort)
{
    TakeAndFree({30 * kMegabyte, 40 * kMegabyte});
    g_mostBytes = g_bytesGiven + 10 * kMegabyte;
    void* block = VcAllocBlock(60 * kMegabyte, false);
    EXPECT_TRUE(block);
    EXPECT_FALSE(VcAllocBlock(90 * kMegabyte, false)) << "there is none at all";
    g_mostBytes = SIZE_MAX;
    VcFreeBlock(block, 60 * kMegabyte);
}
