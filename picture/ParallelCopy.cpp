#include "picture/ParallelCopy.h"

#include "base/ParallelRows.h"
#include "base/ShortMemory.h"

void VcCopyPixels(SBxPicBuf* dst, const SBxPicBuf& src, const CBxSize<int>& size)
{
    const auto copy = [&](int first, int end) {
        CBxPicBufAPI::CopyRect(dst, src, {0, first}, {0, first}, {size.cx, end - first});
    };
    const auto inParallel = [&]
    {
        VcParallelRows(size.cy, size.cx * src.components, copy);
        return Outcome::Done;
    };
    if (FailWithoutMemory(inParallel) != Outcome::Done) // of the task pool
        copy(0, size.cy);
}
