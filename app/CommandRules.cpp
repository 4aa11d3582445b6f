#include "app/CommandRules.h"

#include "app/CommandIds.h"

#define COMMAND(id, handler, ...) {id, __VA_ARGS__},
const FrameCommand kCommands[] = {
#include "app/Commands.inl"
};
#undef COMMAND
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
