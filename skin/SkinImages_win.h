#pragma once

#include "base/Win.h"

// Images of check boxes and radio buttons, loaded at first use and kept until the skin goes.

constexpr int kCheckImageSize = 16;

// False when there is no such image.
bool DrawCheckImage(HDC dc, int x, int y, const wchar_t* name);
void ReleaseCheckImages();
