#pragma once

// The task pool: VcParallelRows splits work over it.
#include "picture/ParallelRows.h"

// Limits the whole process to that many working threads; 0 lifts the limit. Call it while nothing
// runs.
void VcLimitThreads(int threads);
