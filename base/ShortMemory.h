#pragma once

#include <new>

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
