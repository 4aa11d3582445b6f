#pragma once

#include "picture/PicBuf.h"

#include <new>

// Ways to come through a lack of memory in one piece.

// A picture that is released on every way out, exceptions included.
struct ScratchPicture
{
    SBxPicBuf pic;

    ScratchPicture() { CBxPicBufAPI::Init(&pic); }
    ~ScratchPicture() { CBxPicBufAPI::DoneHeap(&pic); }
    ScratchPicture(const ScratchPicture&) = delete;
    ScratchPicture& operator=(const ScratchPicture&) = delete;
};

// Does the work, which is true on failure. Large blocks are asked for and tested one by one; small
// ones, the library's and those of the task pool, throw. Both end as the same failure.
template <typename Work>
[[nodiscard]] bool FailsOrLacksMemory(Work work)
{
    try
    {
        return work();
    }
    catch (const std::bad_alloc&)
    {
        return true;
    }
}
