#pragma once

#include "sample/Math.h"

// The landscape before the window: summer sky, a mountain lake, woods and a meadow.
namespace sample
{

// As radiance from a direction (it is far away, so nothing else matters).
Vec3 Landscape(Vec3 dir, float footprint);

// Its smooth summary, for lighting the room.
Vec3 LandscapeLight(Vec3 dir);

} // namespace sample
