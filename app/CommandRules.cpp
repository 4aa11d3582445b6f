#include "app/CommandRules.h"

#include "app/CommandIds.h"

const FrameCommand kCommands[] = {
    // id, what enables it, menu text, keys, tooltip
    {ID_FILE_OPEN, CommandGroup::Open, 78, L"\tCtrl+O", 79},
    {ID_FILE_SAVEAS, CommandGroup::Save, 8, L"\tCtrl+S", 24},
    {ID_FILE_CLOSE, CommandGroup::Save, 9, L"", 0},
    {ID_OPTIONS, CommandGroup::Always, 10, L"", 0},
    {IDM_EXIT, CommandGroup::Always, 11, L"", 0},
    {ID_MULTI_IMAGE, CommandGroup::Open, 12, L"", 30},
    {ID_SINGLE_LIGHT, CommandGroup::SingleImageTool, 13, L"", 13},
    {ID_TONE_MAPPING, CommandGroup::SingleImageTool, 98, L"", 98},
    {ID_DAYLIGHT_UP, CommandGroup::SingleImageTool, 99, L"", 99},
    {ID_DAYLIGHT_DOWN, CommandGroup::SingleImageTool, 100, L"", 100},
    {ID_SMART_CONTRAST, CommandGroup::SingleImageTool, 101, L"", 101},
    {IDM_ABOUT, CommandGroup::Always, 20, L"", 0},
    {ID_HELP_CONTENTS, CommandGroup::Always, 0, L"", 0},
    {ID_ZOOM_IN, CommandGroup::Always, 0, L"", 25},
    {ID_ZOOM_OUT, CommandGroup::Always, 0, L"", 26},
    {ID_ZOOM_FIT, CommandGroup::Always, 0, L"", 27},
    {ID_ZOOM_100, CommandGroup::Always, 0, L"", 28},
    {ID_ZOOM_COMBO, CommandGroup::Always, 0, L"", 29},
    {ID_MENU_BUTTON, CommandGroup::Always, 0, L"", 0},
    {ID_SOURCE_PREV, CommandGroup::Always, 0, L"", 0},
    {ID_SOURCE_NEXT, CommandGroup::Always, 0, L"", 0},
    {ID_SWITCH_VIEW, CommandGroup::Always, 0, L"", 0},
};
const int kCommandCount = int(sizeof(kCommands) / sizeof(kCommands[0]));

const FrameCommand* FindCommand(int id)
{
    for (const FrameCommand& row : kCommands)
        if (row.id == id)
            return &row;
    return nullptr;
}

void PictureOpened(CommandStates* states)
{
    *states = {true, true, true, true};
}

void PictureClosed(CommandStates* states)
{
    *states = CommandStates();
}

void ToolCommandsEnabled(CommandStates* states, bool enable, bool multiImageMode)
{
    states->open = enable;
    states->save = enable;
    states->singleImage = enable && !multiImageMode;
}

bool IsCommandEnabled(const CommandStates& states, int id)
{
    const FrameCommand* row = FindCommand(id);
    if (!row)
        return false;
    switch (row->group)
    {
    case CommandGroup::Open: return states.open;
    case CommandGroup::Save: return states.save;
    case CommandGroup::SingleImageTool: return states.singleImage;
    case CommandGroup::Always: break;
    }
    return true;
}
