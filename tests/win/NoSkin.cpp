// Stands in for the skin in PlenovizLight, the program with the system's own look: screenshots show
// both side by side.

#include "skin/SkinHooks_win.h"

void InstallSkin() {}

void RemoveSkin() {}
