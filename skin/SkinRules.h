#pragma once

#include <cstdint>

// Which message of which control the skin answers, and with what: one table for
// all of the skin. No windows in here: messages, styles and class names are the
// system's numbers and texts, so that tests read the table without a window.

enum class SkinClass
{
    Other,
    Any, // in the table only
    Dialog,
    Button,
    Static,
    Edit,
    ListBox,
    ComboBox,
    ComboList, // the list that a combo box drops
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
    Menu,   // window of an open popup
    Holder, // of another control, which covers it
};

// By the window class's name, whose letters' case does not count.
SkinClass SkinClassOf(const wchar_t* name);

// What the conditions of the table ask about a window.
struct SkinWindow
{
    SkinClass kind = SkinClass::Other;
    uint32_t style = 0;
    uint32_t exStyle = 0;
    bool enabled = true;
    bool dark = true;       // the dark-only rules hold
    bool flatMenus = false; // the system draws popups without raised edges
};

// Messages by the system's numbers.
namespace SkinMessage
{
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
    kFramePaint = 0x85, // WM_NCPAINT
    kGetDialogCode = 0x87,
    kScrollSetPos = 0xE0,
    kScrollSetInfo = 0xE9,
    kSetCheck = 0xF1,
    kSetState = 0xF3,
    kSetStyle = 0xF4,
    kMenuChar = 0x120,
    kColourMessageBox = 0x132, // WM_CTLCOLOR...: what a control asks its parent
    kColourEdit = 0x133,
    kColourListBox = 0x134,
    kColourButton = 0x135,
    kColourDialog = 0x136,
    kColourScrollBar = 0x137,
    kColourStatic = 0x138,
    kComboSelect = 0x14E,
    kPrintClient = 0x318,
};
} // namespace SkinMessage

// What is done in the control's place, named as the function that does it.
// SkinProcedure_win.cpp calls that function, and the compiler complains there
// about a task without one.
enum class SkinTask
{
    None,   // the skin stays away
    PassOn, // it stands before the control's procedure, which still does the work

    KeepBackground,
    ChangeQuietly,
    PaintFrame,

    PaintCheckOrGroup,
    AnswerButtonDialogCode,
    SetButtonStyle,
    PaintStatic,
    PaintDisabledEdit,
    PaintCombo,
    PaintHeader,
    PaintTab,
    PaintProgress,
    PaintTrackbar,
    PaintToolbar,
    PaintStatusBar,
    PaintScrollBar,
    PaintUpDown,
    PaintMenuFrame,
    FillWithWindowColour,

    DrawItem,
    MeasureMenuItem,
    FindMenuLetter,

    AnswerFaceColours,
    AnswerFieldColours,
    AnswerListColours,
    AnswerTrackColours,
};

// Whether any window's message of that number could be taken: a quick no for
// nearly all messages, before the window is asked about anything.
bool SkinMayTake(uint32_t message);

SkinTask SkinTaskFor(const SkinWindow& window, uint32_t message);

inline bool SkinTakes(const SkinWindow& window, uint32_t message)
{
    return SkinTaskFor(window, message) != SkinTask::None;
}

// Styles by which a dialog asks to keep the system's look, for itself and its
// controls.
constexpr bool OptsOutOfSkin(uint32_t dialogStyle)
{
    return (dialogStyle & 0x300) != 0;
}
