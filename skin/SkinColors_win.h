#pragma once

#include "base/Win.h"
#include "skin/SkinPalette.h"

// The colours that hold right now, for the paintings and for windows of the
// program's own. Window thread only.

// Colour scheme: 0 leaves the controls as the system paints them; 2 and 3 are
// dark.
int SkinScheme();

// Whether the dark-only rules hold.
bool SkinIsDark();

// A system colour (COLOR_...), or what the scheme has in its place.
COLORREF SkinColor(int systemIndex);

// A brush of that colour, which stays the skin's; null for a negative index.
HBRUSH SkinBrush(int systemIndex);

// Sets the scheme, its colours and brushes, or takes them all away. Brushes
// that were handed out before are gone then, but for the system's.
void SetSkinState(const SkinState& state);
