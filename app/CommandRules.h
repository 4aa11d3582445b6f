#pragma once

#include "text/Strings.h"

// Which commands there are, where, and when they may be used. One table that toolbar, menu,
// tooltips and keyboard obey; no windows here.

enum class CommandGroup
{
    Always,          // never switched off
    Open,            // off while a tool runs
    Save,            // off while a tool runs and while nothing is open
    SingleImageTool, // as Save, and off in multi-image mode
};

// The menu's popups, in their order, and whether a line stands above the item.
enum class MenuPlace
{
    None,
    File,
    FileAfterLine,
    Vexa,
    Help,
};

enum class ToolbarPlace
{
    None,
    Next,
    AfterLine,
    AfterGap, // a line and all the room that the other buttons leave
};

// A key by the system's number, or a letter, which follows the keyboard's layout.
struct CommandKey
{
    enum Kind
    {
        None,
        Key,
        Control, // with a key
        Letter,
        AltLetter,
    };
    enum // numbers of keys
    {
        Left = 0x25,
        Right = 0x27,
        F1 = 0x70,
        F5 = 0x74,
    };
    Kind kind;
    int code;
};

// A row of Commands.inl.
struct FrameCommand
{
    int id;
    CommandGroup group;
    MenuPlace menu;
    TextId menuText;
    const wchar_t* keys; // shown behind the menu text, with the tab
    ToolbarPlace toolbar;
    const wchar_t* image; // resource of the button; null = a place without one
    TextId tooltipText;   // 0 = no tooltip
    CommandKey key;
};

extern const FrameCommand kCommands[];
extern const int kCommandCount;

// The row of a command, or null.
const FrameCommand* FindCommand(int id);

// What has been switched on. Starts as it is without a picture.
struct CommandStates
{
    bool open = true;
    bool save = false;
    bool singleImage = false;
    bool zoomBox = false;
};

void PictureOpened(CommandStates* states);
void PictureClosed(CommandStates* states);

// What EnableToolCommands does: a tool starts (false) or has ended (true). In multi-image mode the
// single-image tools stay off.
void ToolCommandsEnabled(CommandStates* states, bool enable, bool multiImageMode);

bool IsCommandEnabled(const CommandStates& states, int id);
