// The remapping loop for processors with AVX-512.

#include "multiscale/RemapRows.h"

namespace
{
#include "multiscale/RemapRows.inl"
}

const RemapRowFn kRemapRowAvx512 = RemapRow;
