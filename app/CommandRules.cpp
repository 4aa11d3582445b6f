#include "app/CommandRules.h"

#include "app/CommandIds.h"

const FrameCommand kCommands[] = {
    // id, what enables it, menu text, keys, tooltip
    {ID_FILE_OPEN, CommandGroup::Open, kTextLoadItem, L"\tCtrl+O", kTextLoadTip},
    {ID_FILE_SAVEAS, CommandGroup::Save, kTextSaveAs, L"\tCtrl+S", kTextSaveTip},
    {ID_FILE_CLOSE, CommandGroup::Save, kTextClose, L"", kNoText},
    {ID_OPTIONS, CommandGroup::Always, kTextOptionsItem, L"", kNoText},
    {IDM_EXIT, CommandGroup::Always, kTextExit, L"", kNoText},
    {ID_MULTI_IMAGE, CommandGroup::Open, kTextMultiImageItem, L"", kTextMultiImageTip},
    {ID_SINGLE_LIGHT, CommandGroup::SingleImageTool, kTextSingleImageItem, L"",
     kTextSingleImageItem},
    {ID_TONE_MAPPING, CommandGroup::SingleImageTool, kTextToneMappingItem, L"",
     kTextToneMappingItem},
    {ID_DAYLIGHT_UP, CommandGroup::SingleImageTool, kTextDaylightUpItem, L"", kTextDaylightUpItem},
    {ID_DAYLIGHT_DOWN, CommandGroup::SingleImageTool, kTextDaylightDownItem, L"",
     kTextDaylightDownItem},
    {ID_SMART_CONTRAST, CommandGroup::SingleImageTool, kTextSmartContrastItem, L"",
     kTextSmartContrastItem},
    {IDM_ABOUT, CommandGroup::Always, kTextAboutItem, L"", kNoText},
    {ID_HELP_CONTENTS, CommandGroup::Always, kNoText, L"", kNoText},
    {ID_ZOOM_IN, CommandGroup::Always, kNoText, L"", kTextZoomInTip},
    {ID_ZOOM_OUT, CommandGroup::Always, kNoText, L"", kTextZoomOutTip},
    {ID_ZOOM_FIT, CommandGroup::Always, kNoText, L"", kTextZoomFitTip},
    {ID_ZOOM_100, CommandGroup::Always, kNoText, L"", kTextZoom100Tip},
    {ID_ZOOM_COMBO, CommandGroup::Always, kNoText, L"", kTextZoomBoxTip},
    {ID_MENU_BUTTON, CommandGroup::Always, kNoText, L"", kNoText},
    {ID_SOURCE_PREV, CommandGroup::Always, kNoText, L"", kNoText},
    {ID_SOURCE_NEXT, CommandGroup::Always, kNoText, L"", kNoText},
    {ID_SWITCH_VIEW, CommandGroup::Always, kNoText, L"", kNoText},
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
