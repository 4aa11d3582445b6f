#pragma once

// Which of the tuned loops run. Some loops are compiled for several instruction sets; what the
// processor can run is asked once, here, and all of them follow.

// In rising order. Plain is the obvious loop that the tuned ones are measured by, and never the
// best: every processor that this system runs on has SSE2.
enum class InstructionSet
{
    Plain,
    Sse2,
    Avx2,
    Avx512, // with its parts DQ, BW and VL
};
constexpr int kInstructionSets = 4;

const char* InstructionSetName(InstructionSet set);
bool ProcessorRuns(InstructionSet set);

// The best that the processor runs, unless another one is forced.
InstructionSet InstructionSetInUse();

// Makes all loops those of a set that the processor runs, or the best again (tests, benchmarks).
// Not while anything computes.
void ForceInstructionSet(InstructionSet set);
void UseBestInstructionSet();

// What a loop is called through, by instruction set; null where it is not compiled for one. The
// loop of the set in use, or else of the next lower set that has one, or else of the lowest.
template <typename Loops>
const Loops& LoopsInUse(const Loops* const (&loops)[kInstructionSets])
{
    int set = int(InstructionSetInUse());
    while (set > 0 && !loops[set])
        --set;
    while (!loops[set])
        ++set;
    return *loops[set];
}
