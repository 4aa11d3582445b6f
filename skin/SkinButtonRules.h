#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

// Buttons. The system lets nobody paint a push button but through
// owner-drawing. So push buttons, and check boxes and radio buttons that look
// like them, are converted: they become owner-drawn, with one more style bit as
// a mark of ours. Since an owner-drawn button answers no question about its
// type or its check, both are kept in the window's user data, and set by the
// skin.
//
// All other check boxes and radio buttons stay what they are, and are painted
// with images.

// The owner-drawn type, 0xB, and the mark, 0x10.
constexpr uint32_t kConvertedStyle = 0x1B;

// BS_PUSHBUTTON and so on: the lower four bits of a button's style.
constexpr uint32_t ButtonType(uint32_t style)
{
    return style & 0xF;
}
constexpr bool IsOwnerDrawnButton(uint32_t style)
{
    return ButtonType(style) == 0xB;
}
constexpr bool IsConvertedButton(uint32_t style)
{
    return (style & 0x1F) == kConvertedStyle;
}
constexpr bool IsPushLike(uint32_t style)
{
    return (style & 0x1000) != 0;
}

// Whether a button of that style is to be converted, and the style that it
// gets. Bit 0x4, the one bit of the types that owner-drawn has not, is cleared.
bool ConvertsButton(uint32_t style);
constexpr uint32_t ConvertedStyle(uint32_t style)
{
    return (style & ~0x4U) | kConvertedStyle;
}

// The user data of a converted button: its former type from bit 4 on, and bit 0
// when checked.
constexpr uint64_t ButtonData(uint32_t style)
{
    return uint64_t(ButtonType(style)) << 4;
}
constexpr bool IsCheckedData(uint64_t data)
{
    return (data & 1) != 0;
}
bool IsDefaultData(uint64_t data); // the button that Enter presses
bool IsRadioData(uint64_t data);
bool IsCheckData(uint64_t data);

// Of controls in order, each saying whether it starts a group: first and end of
// the group that holds one of them.
std::pair<size_t, size_t> GroupAround(const std::vector<bool>& startsGroup, size_t index);

// Name of the image of a check box or radio button, as the resources have it.
// State: 0 cleared, 1 checked, 2 indeterminate, for which radio buttons have no
// image: they show the cleared one.
std::wstring CheckImageName(bool radio, bool dark, int state, bool enabled);
