// The remapping loop for processors with SSE2.

#include "tonemap/RemapRows.h"

namespace
{
#include "tonemap/RemapRows.inl"
}

const RemapRowFn kRemapRowSse2 = RemapRow;
