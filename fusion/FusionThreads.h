#pragma once

#include <functional>

// Splits the rows [0, rows) into ranges over the task pool and waits for all of them. Small planes
// (by rows * rowSamples) run on the calling thread. The function must not throw, and must not
// write outside its own rows.
void VcParallelRows(int rows, int rowSamples, const std::function<void(int, int)>& rowRange);

// Limits the whole process to that many working threads; 0 lifts the limit. Call it while nothing
// runs.
void VcLimitThreads(int threads);
