#pragma once

#include "base/Win.h"

// Asks for a dark title bar, where the system has such: Windows 10 of 2018 and
// later.
void AskForDarkTitle(HWND hwnd);
