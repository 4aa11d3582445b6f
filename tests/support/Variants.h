#pragma once

#include "base/InstructionSet.h"

#include <gtest/gtest.h>

// Runs check once with the loops of every instruction set that this processor has, from `first` on.
template <typename Check>
void ForEachVariant(Check check, InstructionSet first = InstructionSet::Plain)
{
    for (int i = int(first); i < kInstructionSets; ++i)
    {
        const InstructionSet set = InstructionSet(i);
        if (!ProcessorRuns(set))
            continue;
        SCOPED_TRACE(InstructionSetName(set));
        ForceInstructionSet(set);
        check();
        UseBestInstructionSet();
    }
}
