#pragma once

#include "sample/Shapes.h"

namespace sample
{

// Bookcase, armchair, lamp, bench, rug and balls, and the table in front with all that stands on
// it.
void AddFurniture(Geometry* g);

} // namespace sample
