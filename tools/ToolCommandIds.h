#pragma once

// Numbers of the frame's commands that tools send to it. Plain definitions: the resource compiler
// reads them.

#define ID_SOURCE_PREV 32797
#define ID_SOURCE_NEXT 32798

// Sent by the series workers when their files are ready.
#define ID_OPEN_EXPOSURE_FUSION 4261
#define ID_OPEN_POWER_FUSION 4277
