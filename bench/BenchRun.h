#pragma once

#include "base/InstructionSet.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

// What the benchmark programs share: how a run of one is judged, the sizes of its pictures, files.

// Runs the benchmarks that the command line chooses and returns the exit code: 0 only when
// something was run, no result was wrong, and every benchmark ran with at least one of its sets of
// loops. `--small` as the first argument takes pictures of an eighth of the sides: enough to check
// every result in a test, and useless as a measure of time.
int RunBenchmarks(int argc, char** argv);

// A side of a picture in this run, from the one that is measured. Even, so that halves fit.
int BenchSide(int full);

// Whether this run has small pictures.
bool SmallBench();

// Runs the rest of the benchmark with the loops of that instruction set; ends it, and gives false,
// when this processor does not have it, which is no failure. The best are back with
// UseBestInstructionSet.
bool UseInstructionSet(benchmark::State& state, int64_t set);

// Ends a benchmark as failed unless its result is right.
void CheckResult(benchmark::State& state, bool right);

// Pixels a second, as items.
void ReportPixels(benchmark::State& state, int width, int height);

// A new folder for files, with its separator; goes away with everything in it.
struct BenchFolder
{
    std::string path;

    BenchFolder();
    ~BenchFolder();
    BenchFolder(const BenchFolder&) = delete;
    BenchFolder& operator=(const BenchFolder&) = delete;
};
