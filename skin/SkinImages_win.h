#pragma once

#include "base/Win.h"

#include <string>

// Images of check boxes and radio buttons, loaded from the program's resources
// at first use and kept until the skin goes. Names: CheckImageName in
// SkinButtonRules.h.

constexpr int kCheckImageSize = 16; // pixels, both ways

// False when there is no such image, or no drawing it.
bool DrawCheckImage(HDC dc, int x, int y, const std::wstring& name);
void ReleaseCheckImages();
