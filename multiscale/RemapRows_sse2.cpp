// The remapping loop for processors with SSE2.

#include "multiscale/RemapRows.h"

namespace
{
#include "multiscale/RemapRows.inl"
}

const RemapRowFn kRemapRowSse2 = RemapRow;
