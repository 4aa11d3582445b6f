#pragma once

#include <cstdint>
#include <cstdio>
#include <vector>

// Finds the colour profile in a PNG stream and gives it as it stands in the file, packed by zlib;
// FreeImage 3.18 does not read it (it asks its PNG library for the profile with a null pointer).
// False when there is none. Leaves the stream anywhere.
bool FindPngProfile(FILE* stream, std::vector<uint8_t>* packed);
