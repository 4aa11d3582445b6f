#include "base/InstructionSet.h"

#include <atomic>

const char* InstructionSetName(InstructionSet set)
{
    static const char* const kNames[kInstructionSets] = {"plain", "SSE2", "AVX2", "AVX-512"};
    return kNames[int(set)];
}

bool ProcessorRuns(InstructionSet set)
{
    switch (set)
    {
    case InstructionSet::Avx2: return __builtin_cpu_supports("avx2");
    case InstructionSet::Avx512:
        return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
               __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl");
    default: return true;
    }
}

static InstructionSet Best()
{
    if (ProcessorRuns(InstructionSet::Avx512))
        return InstructionSet::Avx512;
    return ProcessorRuns(InstructionSet::Avx2) ? InstructionSet::Avx2 : InstructionSet::Sse2;
}

constexpr int kNotForced = -1;
static std::atomic<int> g_forcedSet{kNotForced};

InstructionSet InstructionSetInUse()
{
    static const InstructionSet best = Best();
    const int forced = g_forcedSet.load(std::memory_order_relaxed);
    return forced == kNotForced ? best : InstructionSet(forced);
}

void ForceInstructionSet(InstructionSet set)
{
    g_forcedSet.store(int(set), std::memory_order_relaxed);
}

void UseBestInstructionSet()
{
    g_forcedSet.store(kNotForced, std::memory_order_relaxed);
}
