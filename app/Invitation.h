#pragma once

#include "base/Geometry.h"

// What the view says while no picture is open: a text in a rounded frame, in the middle.

struct InvitationLayout
{
    int fontHeight;     // of the letters, in pixels
    CBxRect<int> frame; // in the view area, whose corner is (0, 0)
    CBxRect<int> text;  // within the frame
    int textGrey, frameGrey;
};

// Widest text; a longer one breaks into lines.
int InvitationTextWidth(CBxSize<int> area);
int InvitationFontHeight(CBxSize<int> area);

// For a text that takes that room, over a background of that grey.
InvitationLayout LayOutInvitation(CBxSize<int> area, CBxSize<int> text, int background);
