#include "base/ParallelRows.h"

#include <tbb/blocked_range.h>
#include <tbb/global_control.h>
#include <tbb/parallel_for.h>

void VcParallelRows(int rows, int rowSamples, const LoopBody<int, int>& rowRange)
{
    // Below some ten thousand samples a task costs more than its work.
    constexpr int kSamplesPerTask = 16384;
    const int grain = rowSamples > 0 ? (kSamplesPerTask + rowSamples - 1) / rowSamples : 1;
    if (rows <= grain)
    {
        rowRange(0, rows);
        return;
    }
    tbb::task_group_context context(tbb::task_group_context::bound);
    tbb::parallel_for(
        tbb::blocked_range<int>(0, rows, size_t(grain)),
        [&](const tbb::blocked_range<int>& range) { rowRange(range.begin(), range.end()); },
        tbb::auto_partitioner(), context);
}

void VcLimitThreads(int threads)
{
    // Never freed at the end of the program: a limit that is lifted there starts threads once more.
    static tbb::global_control* limit = nullptr;
    delete limit;
    limit = nullptr;
    if (threads > 0)
        limit =
            new tbb::global_control(tbb::global_control::max_allowed_parallelism, size_t(threads));
}
