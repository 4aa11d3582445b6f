#pragma once

#include "text/Strings.h"

// Which commands there are and when they may be used. One table that toolbar, menu, tooltips and
// keyboard obey; no windows here.

enum class CommandGroup
{
    Always,          // never switched off
    Open,            // off while a tool runs
    Save,            // off while a tool runs and while nothing is open
    SingleImageTool, // as Save, and off in multi-image mode
};

struct FrameCommand
{
    int id;
    CommandGroup group;
    TextId menuText;     // text in the command menu, 0 = not there
    const wchar_t* keys; // shown behind the menu text, with the tab
    TextId tooltipText;  // 0 = no tooltip
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
