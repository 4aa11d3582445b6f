#pragma once

#include "sample/Geometry.h"

namespace sample
{

// What shading needs to know of one point of a surface.
struct Look
{
    Vec3 color;  // diffuse reflectance
    Vec3 normal; // smooth normal, tilted by the relief of the material
    Vec3 glow;   // light of its own, as radiance
    Vec3 mirror; // reflectance straight on of the polished layer, black where there is none
};

// footprint: width in metres that one picture element covers on the surface; finer patterns are
// averaged away rather than left to flicker.
Look LookAt(const Material& material, const SurfacePoint& point, float footprint);

// The landscape outside, as radiance from a direction (it is far away, so nothing else matters),
// and its smooth summary for lighting the room.
Vec3 Landscape(Vec3 dir, float footprint);
Vec3 LandscapeLight(Vec3 dir);

} // namespace sample
