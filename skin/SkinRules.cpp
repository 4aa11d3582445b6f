// The table is read from the top: the first row of a message that is of the
// window's class, or of Any, decides alone. If its condition does not hold, the
// control is left to itself, whatever rows follow. So a class is excepted from
// a rule for all by a row of its own that stands before it.

#include "skin/SkinRules.h"

#include "skin/SkinButtonRules.h"

#include <cwctype>

using namespace SkinMessage;

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

// Conditions of the table's rows.

static bool IsDarkWindow(const SkinWindow& window)
{
    return window.dark;
}
static bool IsDisabled(const SkinWindow& window)
{
    return !window.enabled;
}
static bool HasRaisedMenus(const SkinWindow& window)
{
    return !window.flatMenus;
}

constexpr uint32_t kBorder = 0x00800000; // style
constexpr uint32_t kDialogFrame = 0x1, kClientEdge = 0x200,
                   kStaticEdge = 0x20000; // extended

static bool HasEdge(const SkinWindow& window)
{
    return (window.style & kBorder) != 0 || (window.exStyle & (kClientEdge | kStaticEdge)) != 0;
}
static bool HasFrame(const SkinWindow& window)
{
    return HasEdge(window) || (window.exStyle & kDialogFrame) != 0;
}
// Static controls that are nothing but a frame: black, grey and white ones, and
// etched ones.
static bool IsFramedStatic(const SkinWindow& window)
{
    const uint32_t type = window.style & 0x1F;
    const bool frameType = (type >= 7 && type <= 9) || (type >= 16 && type <= 18);
    return frameType || HasFrame(window);
}
static bool IsDisabledOrFramedStatic(const SkinWindow& window)
{
    return IsDisabled(window) || IsFramedStatic(window);
}
static bool IsConverted(const SkinWindow& window)
{
    return IsConvertedButton(window.style);
}
static bool IsOwnerDrawn(const SkinWindow& window)
{
    return IsOwnerDrawnButton(window.style);
}
static bool IsNotOwnerDrawn(const SkinWindow& window)
{
    return !IsOwnerDrawnButton(window.style);
}

// What paints the whole of a control keeps the background from being erased
// before, which would flicker. The bars at the window's edges are not even
// subclassed for that: they erase nothing. What changes a control's look makes
// many controls draw at once, without a paint message; these changes are made
// quietly.
static const struct
{
    SkinClass kind;
    uint32_t message;
    SkinTask task;
    bool (*when)(const SkinWindow&); // null: always
} kRows[] = {
    {SkinClass::Button, kPaint, SkinTask::PaintCheckOrGroup, IsNotOwnerDrawn},
    {SkinClass::Button, kEraseBackground, SkinTask::KeepBackground, IsOwnerDrawn},
    {SkinClass::Button, kGetDialogCode, SkinTask::AnswerButtonDialogCode, IsConverted},
    {SkinClass::Button, kSetStyle, SkinTask::SetButtonStyle, IsConverted},
    {SkinClass::Button, kSetText, SkinTask::ChangeQuietly, nullptr},
    {SkinClass::Button, kEnable, SkinTask::ChangeQuietly, nullptr},
    {SkinClass::Button, kSetFocus, SkinTask::ChangeQuietly, nullptr},
    {SkinClass::Button, kKillFocus, SkinTask::ChangeQuietly, nullptr},
    {SkinClass::Button, kSetCheck, SkinTask::ChangeQuietly, nullptr},
    {SkinClass::Button, kSetState, SkinTask::ChangeQuietly, nullptr},

    {SkinClass::Static, kPaint, SkinTask::PaintStatic, nullptr},
    {SkinClass::Static, kEraseBackground, SkinTask::KeepBackground, IsDisabledOrFramedStatic},
    {SkinClass::Static, kFramePaint, SkinTask::PaintFrame, IsFramedStatic},
    {SkinClass::Static, kSetText, SkinTask::ChangeQuietly, nullptr},
    {SkinClass::Static, kEnable, SkinTask::ChangeQuietly, nullptr},

    {SkinClass::ComboBox, kPaint, SkinTask::PaintCombo, nullptr},
    {SkinClass::ComboBox, kEraseBackground, SkinTask::KeepBackground, nullptr},
    {SkinClass::ComboBox, kFramePaint, SkinTask::PassOn, nullptr},
    {SkinClass::ComboBox, kEnable, SkinTask::ChangeQuietly, nullptr},
    {SkinClass::ComboBox, kSetFocus, SkinTask::ChangeQuietly, nullptr},
    {SkinClass::ComboBox, kKillFocus, SkinTask::ChangeQuietly, nullptr},
    {SkinClass::ComboBox, kComboSelect, SkinTask::ChangeQuietly, nullptr},

    {SkinClass::Edit, kPaint, SkinTask::PaintDisabledEdit, IsDisabled},
    {SkinClass::Edit, kFramePaint, SkinTask::PaintFrame, HasEdge},
    {SkinClass::ListBox, kFramePaint, SkinTask::PaintFrame, nullptr},
    {SkinClass::ComboList, kFramePaint, SkinTask::PaintFrame, nullptr},
    {SkinClass::TreeView, kFramePaint, SkinTask::PaintFrame, nullptr},
    {SkinClass::ListView, kFramePaint, SkinTask::PaintFrame, nullptr},

    {SkinClass::Header, kPaint, SkinTask::PaintHeader, nullptr},
    {SkinClass::Header, kEraseBackground, SkinTask::KeepBackground, nullptr},
    {SkinClass::Tab, kPaint, SkinTask::PaintTab, nullptr},
    {SkinClass::Tab, kEraseBackground, SkinTask::KeepBackground, IsDarkWindow},
    {SkinClass::Progress, kPaint, SkinTask::PaintProgress, nullptr},
    {SkinClass::Progress, kEraseBackground, SkinTask::KeepBackground, nullptr},
    {SkinClass::Progress, kFramePaint, SkinTask::PaintFrame, nullptr},
    {SkinClass::Trackbar, kPaint, SkinTask::PaintTrackbar, nullptr},
    {SkinClass::Trackbar, kEraseBackground, SkinTask::KeepBackground, nullptr},
    {SkinClass::Trackbar, kEnable, SkinTask::ChangeQuietly, nullptr},
    {SkinClass::ScrollBar, kPaint, SkinTask::PaintScrollBar, nullptr},
    {SkinClass::ScrollBar, kEraseBackground, SkinTask::KeepBackground, nullptr},
    {SkinClass::UpDown, kPaint, SkinTask::PaintUpDown, nullptr},
    {SkinClass::UpDown, kEraseBackground, SkinTask::KeepBackground, nullptr},
    {SkinClass::Toolbar, kPaint, SkinTask::PaintToolbar, nullptr},
    {SkinClass::Toolbar, kEraseBackground, SkinTask::None, nullptr},
    {SkinClass::Toolbar, kFramePaint, SkinTask::PaintFrame, HasFrame},
    {SkinClass::StatusBar, kPaint, SkinTask::PaintStatusBar, nullptr},
    {SkinClass::StatusBar, kEraseBackground, SkinTask::None, nullptr},

    {SkinClass::Menu, kPaint, SkinTask::PaintMenuFrame, nullptr},
    {SkinClass::Menu, kFramePaint, SkinTask::PaintMenuFrame, nullptr},
    {SkinClass::Menu, kEraseBackground, SkinTask::PassOn, HasRaisedMenus},
    {SkinClass::Holder, kEraseBackground, SkinTask::FillWithWindowColour, nullptr},

    // What an owner answers for its menus and controls, whatever its own class.
    {SkinClass::Any, kDrawItem, SkinTask::DrawItem, nullptr},
    {SkinClass::Any, kMeasureItem, SkinTask::MeasureMenuItem, nullptr},
    {SkinClass::Any, kMenuChar, SkinTask::FindMenuLetter, nullptr},
    {SkinClass::Any, kColourMessageBox, SkinTask::AnswerFaceColours, nullptr},
    {SkinClass::Any, kColourEdit, SkinTask::AnswerFieldColours, nullptr},
    {SkinClass::Any, kColourListBox, SkinTask::AnswerListColours, nullptr},
    {SkinClass::Any, kColourButton, SkinTask::AnswerFaceColours, nullptr},
    {SkinClass::Any, kColourDialog, SkinTask::AnswerFaceColours, nullptr},
    {SkinClass::Any, kColourScrollBar, SkinTask::AnswerTrackColours, nullptr},
    {SkinClass::Any, kColourStatic, SkinTask::AnswerFaceColours, nullptr},

    // While these are handled, a control may call its procedure for others,
    // past all hooks. With the skin's procedure in front, those others find
    // their rows above.
    {SkinClass::Any, kEraseBackground, SkinTask::PassOn, nullptr},
    {SkinClass::Any, kKillFocus, SkinTask::PassOn, nullptr},
    {SkinClass::Any, kEnable, SkinTask::PassOn, nullptr},
    {SkinClass::Any, kSetText, SkinTask::PassOn, nullptr},
    {SkinClass::Any, kWindowPosChanged, SkinTask::PassOn, nullptr},
    {SkinClass::Any, kScrollSetPos, SkinTask::PassOn, nullptr},
    {SkinClass::Any, kScrollSetInfo, SkinTask::PassOn, nullptr},
    {SkinClass::Any, kSetState, SkinTask::PassOn, nullptr},
};

// A picture of a control (PrintWindow and the like) is painted as the control
// is.
static uint32_t RowMessage(uint32_t message)
{
    return message == kPrintClient ? uint32_t(kPaint) : message;
}

bool SkinMayTake(uint32_t message)
{
    for (const auto& row : kRows)
        if (row.message == RowMessage(message))
            return true;
    return false;
}

SkinTask SkinTaskFor(const SkinWindow& window, uint32_t message)
{
    for (const auto& row : kRows)
        if (row.message == RowMessage(message) &&
            (row.kind == SkinClass::Any || row.kind == window.kind))
            return !row.when || row.when(window) ? row.task : SkinTask::None;
    return SkinTask::None;
}
