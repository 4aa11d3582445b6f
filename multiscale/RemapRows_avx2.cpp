// The remapping loop for processors with AVX2.

#include "multiscale/RemapRows.h"

namespace
{
#include "multiscale/RemapRows.inl"
}

const RemapRowFn kRemapRowAvx2 = RemapRow;
