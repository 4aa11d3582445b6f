#pragma once

#include <functional>

// Splits the rows [0, rows) into ranges over the task pool and waits for all of them. Small planes
// (by rows * rowSamples) run on the calling thread. The function must not throw, and must not
// write outside its own rows. The pool itself lives with the engine (fusion/FusionThreads.h).
void VcParallelRows(int rows, int rowSamples, const std::function<void(int, int)>& rowRange);
