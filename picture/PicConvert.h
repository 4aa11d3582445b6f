#pragma once

#include "picture/PicBuf.h"

// The conversion of CBxPicBufAPI, which tells what it does.
bool ConvertPicture(SBxPicBuf* buffer, unsigned bitsPerComponent, unsigned components);
