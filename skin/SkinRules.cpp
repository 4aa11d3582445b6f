#include "skin/SkinRules.h"

#include <algorithm>
#include <cwctype>

// Messages by the system's numbers.
enum : uint32_t
{
    kSetFocus = 0x07,
    kKillFocus = 0x08,
    kEnable = 0x0A,
    kSetText = 0x0C,
    kPaint = 0x0F,
    kEraseBackground = 0x14,
    kDrawItem = 0x2B,
    kMeasureItem = 0x2C,
    kWindowPosChanged = 0x47,
    kNcPaint = 0x85,
    kGetDialogCode = 0x87,
    kScrollSetPos = 0xE0,
    kScrollSetInfo = 0xE9,
    kSetCheck = 0xF1,
    kSetState = 0xF3,
    kSetStyle = 0xF4,
    kMenuChar = 0x120,
    kColourBox = 0x132,
    kColourEdit = 0x133,
    kColourList = 0x134,
    kColourButton = 0x135,
    kColourDialog = 0x136,
    kColourScrollBar = 0x137,
    kColourStatic = 0x138,
    kComboSelect = 0x14E,
    kPrintClient = 0x318,
};

static const struct
{
    const wchar_t* name;
    SkinClass kind;
} kClassNames[] = {
    {L"#32770", SkinClass::Dialog},
    {L"Button", SkinClass::Button},
    {L"Static", SkinClass::Static},
    {L"Edit", SkinClass::Edit},
    {L"ListBox", SkinClass::ListBox},
    {L"ComboBox", SkinClass::ComboBox},
    {L"ComboLBox", SkinClass::ComboList},
    {L"SysListView32", SkinClass::ListView},
    {L"SysTreeView32", SkinClass::TreeView},
    {L"SysTabControl32", SkinClass::Tab},
    {L"msctls_progress32", SkinClass::Progress},
    {L"msctls_trackbar32", SkinClass::Trackbar},
    {L"ToolbarWindow32", SkinClass::Toolbar},
    {L"msctls_statusbar32", SkinClass::StatusBar},
    {L"SysHeader32", SkinClass::Header},
    {L"ScrollBar", SkinClass::ScrollBar},
    {L"msctls_updown32", SkinClass::UpDown},
    {L"tooltips_class32", SkinClass::Tooltip},
    {L"#32768", SkinClass::Menu},
    {L"ComboBoxEx32", SkinClass::Holder},
    {L"SHELLDLL_DefView", SkinClass::Holder}, // files in the system's dialogs
};

static bool SameName(const wchar_t* a, const wchar_t* b)
{
    while (*a && std::towlower(wint_t(*a)) == std::towlower(wint_t(*b)))
        ++a, ++b;
    return *a == *b;
}

SkinClass SkinClassOf(const wchar_t* name)
{
    for (const auto& row : kClassNames)
        if (SameName(row.name, name))
            return row.kind;
    return SkinClass::Other;
}

static bool IsFramed(const SkinWindow& window)
{
    constexpr uint32_t kBorder = 0x00800000, kEdges = 0x00020201; // dialog, client, static edge
    return (window.style & kBorder) != 0 || (window.exStyle & kEdges) != 0;
}
static bool HasEdge(const SkinWindow& window)
{
    constexpr uint32_t kClientOrStaticEdge = 0x00020200;
    return (window.exStyle & kClientOrStaticEdge) != 0 || (window.style & 0x00800000) != 0;
}
static bool IsFramedStatic(const SkinWindow& window)
{
    const uint32_t type = window.style & 0x1F;
    const bool frameType = (type >= 7 && type <= 9) || (type >= 16 && type <= 18);
    return frameType || IsFramed(window);
}
static bool IsDarkWindow(const SkinWindow& window)
{
    return window.dark;
}
static bool IsOwnerDrawn(const SkinWindow& window)
{
    return ButtonType(window.style) == 0xB;
}
static bool IsConverted(const SkinWindow& window)
{
    return IsConvertedButton(window.style);
}
static bool IsPaintedButton(const SkinWindow& window)
{
    return ButtonType(window.style) != 0xB;
}
static bool IsQuietStatic(const SkinWindow& window)
{
    return !window.enabled || IsFramedStatic(window);
}
static bool HasRaisedMenus(const SkinWindow& window)
{
    return !window.flatMenus;
}
static bool IsDisabled(const SkinWindow& window)
{
    return !window.enabled;
}

// First row of a class and a message decides; rows of Any come last.
static const struct
{
    SkinClass kind;
    uint32_t message;
    bool (*when)(const SkinWindow&); // null: always
} kTaken[] = {
    {SkinClass::Tab, kEraseBackground, IsDarkWindow},
    {SkinClass::Button, kEraseBackground, IsOwnerDrawn},
    {SkinClass::Menu, kEraseBackground, HasRaisedMenus},
    {SkinClass::Static, kEraseBackground, IsQuietStatic},
    {SkinClass::Any, kEraseBackground, nullptr},

    {SkinClass::Edit, kNcPaint, HasEdge},
    {SkinClass::ListBox, kNcPaint, nullptr},
    {SkinClass::ComboBox, kNcPaint, nullptr},
    {SkinClass::ComboList, kNcPaint, nullptr},
    {SkinClass::TreeView, kNcPaint, nullptr},
    {SkinClass::ListView, kNcPaint, nullptr},
    {SkinClass::Progress, kNcPaint, nullptr},
    {SkinClass::Menu, kNcPaint, nullptr},
    {SkinClass::Static, kNcPaint, IsFramedStatic},
    {SkinClass::Toolbar, kNcPaint, IsFramed},

    {SkinClass::Button, kPaint, IsPaintedButton},
    {SkinClass::Static, kPaint, nullptr},
    {SkinClass::Edit, kPaint, IsDisabled},
    {SkinClass::ComboBox, kPaint, nullptr},
    {SkinClass::Tab, kPaint, nullptr},
    {SkinClass::Progress, kPaint, nullptr},
    {SkinClass::Trackbar, kPaint, nullptr},
    {SkinClass::Toolbar, kPaint, nullptr},
    {SkinClass::StatusBar, kPaint, nullptr},
    {SkinClass::Header, kPaint, nullptr},
    {SkinClass::ScrollBar, kPaint, nullptr},
    {SkinClass::UpDown, kPaint, nullptr},
    {SkinClass::Menu, kPaint, nullptr},

    {SkinClass::Button, kGetDialogCode, IsConverted},
    {SkinClass::Button, kSetCheck, nullptr},
    {SkinClass::Button, kSetStyle, IsConverted},
    {SkinClass::Button, kSetFocus, nullptr},
    {SkinClass::ComboBox, kSetFocus, nullptr},
    {SkinClass::ComboBox, kComboSelect, nullptr},

    // For every class: what changes a control's look behind the back of its paint message.
    {SkinClass::Any, kKillFocus, nullptr},
    {SkinClass::Any, kEnable, nullptr},
    {SkinClass::Any, kSetText, nullptr},
    {SkinClass::Any, kWindowPosChanged, nullptr},
    {SkinClass::Any, kScrollSetPos, nullptr},
    {SkinClass::Any, kScrollSetInfo, nullptr},
    {SkinClass::Any, kSetState, nullptr},
    {SkinClass::Any, kDrawItem, nullptr},
    {SkinClass::Any, kMeasureItem, nullptr},
    {SkinClass::Any, kMenuChar, nullptr},
    {SkinClass::Any, kColourBox, nullptr},
    {SkinClass::Any, kColourEdit, nullptr},
    {SkinClass::Any, kColourList, nullptr},
    {SkinClass::Any, kColourButton, nullptr},
    {SkinClass::Any, kColourDialog, nullptr},
    {SkinClass::Any, kColourScrollBar, nullptr},
    {SkinClass::Any, kColourStatic, nullptr},
};

// A picture of a control is painted as the control.
static uint32_t RowMessage(uint32_t message)
{
    return message == kPrintClient ? uint32_t(kPaint) : message;
}

bool SkinMayTake(uint32_t message)
{
    for (const auto& row : kTaken)
        if (row.message == RowMessage(message))
            return true;
    return false;
}

bool SkinTakes(const SkinWindow& window, uint32_t message)
{
    if (message == kEraseBackground &&
        (window.kind == SkinClass::Toolbar || window.kind == SkinClass::StatusBar))
        return false; // both paint their background with everything else
    for (const auto& row : kTaken)
        if (row.message == RowMessage(message) &&
            (row.kind == SkinClass::Any || row.kind == window.kind))
            return !row.when || row.when(window);
    return false;
}

enum : uint32_t
{
    kPushButton = 0,
    kDefaultPushButton = 1,
    kCheckBox = 2,
    kAutoCheckBox = 3,
    kRadioButton = 4,
    kThreeState = 5,
    kAutoThreeState = 6,
    kAutoRadioButton = 9,
};

bool ConvertsButton(uint32_t style)
{
    const uint32_t type = ButtonType(style);
    if (type == kPushButton || type == kDefaultPushButton)
        return true;
    return IsPushLike(style) && type <= kAutoRadioButton && type != 7 && type != 8; // group, user
}

bool IsRadioData(uint64_t data)
{
    return (data >> 4) == kRadioButton || (data >> 4) == kAutoRadioButton;
}

bool IsCheckData(uint64_t data)
{
    const uint64_t type = data >> 4;
    return type == kCheckBox || type == kAutoCheckBox || type == kThreeState ||
           type == kAutoThreeState;
}

std::pair<size_t, size_t> GroupAround(const std::vector<bool>& startsGroup, size_t index)
{
    size_t first = index, end = index + 1;
    while (first > 0 && !startsGroup[first])
        --first;
    while (end < startsGroup.size() && !startsGroup[end])
        ++end;
    return {first, end};
}

const wchar_t* CheckImageName(bool radio, bool dark, int state, bool enabled)
{
    // Looks, then states 0 to 2, then disabled and enabled. A radio button has no third state.
    static const wchar_t* const kNames[4][3][2] = {
        {{L"CHECK_DESOFF", L"CHECK_DESON"},
         {L"CHECK_SELOFF", L"CHECK_SELON"},
         {L"CHECK_SEMIOFF", L"CHECK_SEMION"}},
        {{L"CHECKD_DESOFF", L"CHECKD_DESON"},
         {L"CHECKD_SELOFF", L"CHECKD_SELON"},
         {L"CHECKD_SEMIOFF", L"CHECKD_SEMION"}},
        {{L"RADIO_DESOFF", L"RADIO_DESON"},
         {L"RADIO_SELOFF", L"RADIO_SELON"},
         {L"RADIO_DESOFF", L"RADIO_DESON"}},
        {{L"RADIOD_DESOFF", L"RADIOD_DESON"},
         {L"RADIOD_SELOFF", L"RADIOD_SELON"},
         {L"RADIOD_DESOFF", L"RADIOD_DESON"}},
    };
    return kNames[(radio ? 2 : 0) + (dark ? 1 : 0)][std::clamp(state, 0, 2)][enabled ? 1 : 0];
}
