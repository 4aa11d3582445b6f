#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

// Which windows and messages the skin takes, and what converted buttons carry. No windows in here:
// styles and messages are the system's numbers.

enum class SkinClass
{
    Other,
    Any, // in tables only
    Dialog,
    Button,
    Static,
    Edit,
    ListBox,
    ComboBox,
    ComboList,
    ListView,
    TreeView,
    Tab,
    Progress,
    Trackbar,
    Toolbar,
    StatusBar,
    Header,
    ScrollBar,
    UpDown,
    Tooltip,
    Menu,
    Holder, // of another control, which covers it
};

// By the class's name, whose letters' case does not count.
SkinClass SkinClassOf(const wchar_t* name);

struct SkinWindow
{
    SkinClass kind = SkinClass::Other;
    uint32_t style = 0;
    uint32_t exStyle = 0;
    bool enabled = true;
    bool dark = true;
    bool flatMenus = false;
};

// Whether any window's message of that number could be taken: a quick no for all others.
bool SkinMayTake(uint32_t message);
bool SkinTakes(const SkinWindow& window, uint32_t message);

// Styles by which a dialog asks to keep the system's look, for itself and its controls.
constexpr bool OptsOutOfSkin(uint32_t dialogStyle)
{
    return (dialogStyle & 0x300) != 0;
}

// Push buttons, and check boxes and radio buttons that look like them, become owner-drawn with one
// more style bit as a mark. A button of the second kind keeps its type and its check in the
// window's user data, since an owner-drawn button answers no question about either.
constexpr uint32_t kConvertedStyle = 0x1B;

constexpr uint32_t ButtonType(uint32_t style)
{
    return style & 0xF;
}
constexpr bool IsConvertedButton(uint32_t style)
{
    return (style & 0x1F) == kConvertedStyle;
}
constexpr bool IsPushLike(uint32_t style)
{
    return (style & 0x1000) != 0;
}
bool ConvertsButton(uint32_t style);
constexpr uint32_t ConvertedStyle(uint32_t style)
{
    return (style & ~0x4U) | kConvertedStyle;
}
constexpr uint64_t ButtonData(uint32_t style)
{
    return uint64_t(ButtonType(style)) << 4;
}
constexpr bool IsCheckedData(uint64_t data)
{
    return (data & 1) != 0;
}
bool IsRadioData(uint64_t data);
bool IsCheckData(uint64_t data);

// Of controls in order, each saying whether it starts a group: first and end of the group that
// holds one of them.
std::pair<size_t, size_t> GroupAround(const std::vector<bool>& startsGroup, size_t index);

// Name of the image of a check box or radio button. State: 0 cleared, 1 checked, 2 indeterminate.
const wchar_t* CheckImageName(bool radio, bool dark, int state, bool enabled);
