#pragma once

// Colours of the controls, for windows of the program's own.

// Colour scheme: 0 leaves the controls as the system paints them; 2 and 3 are dark.
int SkinScheme();

// A system colour (COLOR_...), or what the scheme has in its place; a COLORREF.
unsigned long SkinColor(int systemIndex);
