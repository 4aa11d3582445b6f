#pragma once

#include "base/Win.h"
#include "skin/SkinTable.h"

// A brush of SkinColor's colour, which stays the skin's; null for a negative index.
HBRUSH SkinBrush(int systemIndex);

// Whether the dark-only rules hold.
bool SkinIsDark();

// Sets the scheme, its colours and brushes, or takes them all away. The colours of the system are
// never deleted.
void SetSkinState(const SkinState& state);
