#include "skin/SkinButtonRules.h"

#include <algorithm>

// Types of buttons (BS_...), as styles have them in their lower four bits.
enum : uint32_t
{
    kPushButton = 0,
    kDefaultPushButton = 1,
    kCheckBox = 2,
    kAutoCheckBox = 3,
    kRadioButton = 4,
    kThreeState = 5,
    kAutoThreeState = 6,
    kGroupBox = 7,
    kUserButton = 8,
    kAutoRadioButton = 9,
};

// Group boxes have nothing to press, and "user buttons" are a type of old that
// nobody makes.
bool ConvertsButton(uint32_t style)
{
    const uint32_t type = ButtonType(style);
    if (type == kPushButton || type == kDefaultPushButton)
        return true;
    return IsPushLike(style) && type <= kAutoRadioButton && type != kGroupBox &&
           type != kUserButton;
}

bool IsDefaultData(uint64_t data)
{
    return (data >> 4) == kDefaultPushButton;
}

bool IsRadioData(uint64_t data)
{
    return (data >> 4) == kRadioButton || (data >> 4) == kAutoRadioButton;
}

bool IsCheckData(uint64_t data)
{
    const uint64_t type = data >> 4;
    const bool threeStates = type == kThreeState || type == kAutoThreeState;
    return type == kCheckBox || type == kAutoCheckBox || threeStates;
}

// A group reaches from the control that starts it up to the next one that
// starts another.
std::pair<size_t, size_t> GroupAround(const std::vector<bool>& startsGroup, size_t index)
{
    size_t first = index, end = index + 1;
    while (first > 0 && !startsGroup[first])
        --first;
    while (end < startsGroup.size() && !startsGroup[end])
        ++end;
    return {first, end};
}

std::wstring CheckImageName(bool radio, bool dark, int state, bool enabled)
{
    static const wchar_t* const kStates[] = {L"DES", L"SEL", L"SEMI"};
    const int shown = radio && state == 2 ? 0 : std::clamp(state, 0, 2);
    return std::wstring(radio ? L"RADIO" : L"CHECK") + (dark ? L"D_" : L"_") + kStates[shown] +
           (enabled ? L"ON" : L"OFF");
}
