#include "app/Invitation.h"

#include <algorithm>

constexpr int kSmallestLetters = 13, kLargestLetters = 30;

int InvitationTextWidth(CBxSize<int> area)
{
    return std::max(area.cx * 3 / 4, 1);
}

int InvitationFontHeight(CBxSize<int> area)
{
    return std::clamp(area.cx / 45, kSmallestLetters, kLargestLetters);
}

// Dark letters on a light view and light ones on a dark view, seven times as light or more; the
// frame stands back.
static void ChooseGreys(InvitationLayout* layout, int background)
{
    const bool dark = background < 128;
    layout->textGrey = dark ? 205 : 35;
    layout->frameGrey = dark ? background + 45 : background - 50;
}

InvitationLayout LayOutInvitation(CBxSize<int> area, CBxSize<int> text, int background)
{
    InvitationLayout layout;
    layout.fontHeight = InvitationFontHeight(area);
    const int left = (area.cx - text.cx) / 2, top = (area.cy - text.cy) / 2;
    layout.text = {left, top, left + text.cx, top + text.cy};
    const int sides = layout.fontHeight * 2, ends = layout.fontHeight * 3 / 2;
    layout.frame = {left - sides, top - ends, left + text.cx + sides, top + text.cy + ends};
    ChooseGreys(&layout, background);
    return layout;
}
