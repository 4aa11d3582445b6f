#pragma once

#include "base/Outcome.h"

#include <new>

// Does the work and tells how it ended. Large blocks are asked for and tested one by one; small
// ones, the library's and those of the task pool, throw. Both end as the same failure.
template <typename Work>
Outcome FailWithoutMemory(Work work)
{
    try
    {
        return work();
    }
    catch (const std::bad_alloc&)
    {
        return Outcome::Failed;
    }
}
