#pragma once

#include "sample/Shapes.h"

// The room of the sample scene: a sitting room with one tall window into a summer landscape, built
// so that sunlit clouds and the inside of the bookcase beside the window share one picture.
namespace sample
{

constexpr float kRoomLeft = -2.5f, kRoomRight = 2.5f; // x
constexpr float kRoomTop = 2.7f;                      // y; the floor is at 0
constexpr float kRoomNear = -1.7f, kRoomFar = 4.6f;   // z

// The window's opening in the far wall, and the outer face of that wall, where daylight enters.
constexpr float kWindowLeft = -0.2f, kWindowRight = 1.9f;
constexpr float kWindowBottom = 0.8f, kWindowTop = 2.32f;
constexpr float kWindowOutside = 4.92f;

// A second, smaller window in the left wall, beside the camera and out of the picture, behind a
// blind: it gives the foreground some light from the front.
constexpr float kBlindNear = -1.1f, kBlindFar = 0.3f;
constexpr float kBlindBottom = 0.9f, kBlindTop = 2.1f;

constexpr Vec3 kLampBulb = {-2.02f, 1.56f, 3.78f};
constexpr float kShadeBottom = 1.40f, kShadeTop = 1.72f, kShadeRadius = 0.19f;

// Everything: walls, window, furniture.
void BuildRoom(Geometry* g);

} // namespace sample
