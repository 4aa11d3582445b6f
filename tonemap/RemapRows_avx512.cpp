// The remapping loop for processors with AVX-512.

#include "tonemap/RemapRows.h"

namespace
{
#include "tonemap/RemapRows.inl"
}

const RemapRowFn kRemapRowAvx512 = RemapRow;
