// The remapping loop for processors with AVX2.

#include "tonemap/RemapRows.h"

namespace
{
#include "tonemap/RemapRows.inl"
}

const RemapRowFn kRemapRowAvx2 = RemapRow;
