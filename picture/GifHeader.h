#pragma once

#include <cstdio>

// Size of the first frame of a GIF stream, which is what a decoder allocates
// for; the screen size in the file's first bytes may differ. False when there
// is no frame. Leaves the stream anywhere.
bool GifFrameSize(FILE* stream, int* width, int* height);
