#pragma once

#include <cstdint>

// Memory that can be taken now without pushing other programs out.
int64_t FreeMemoryBytes();
