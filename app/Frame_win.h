#pragma once

#include "app/CommandRules.h"
#include "tools/ToolHost_win.h"

// What the frame owns, for its own files; tools get it by their host. One of each, window thread
// only. Window handles are in AppWindows_win.h, the view is in FrameView_win.h.
Document& FrameDocument();
bool IsComputing(); // a worker is: the mouse and the zoom box rest
CommandStates& FrameCommands();
Settings& FrameSettings();

// The frame as tools see it, once it has its windows.
const ToolHost& FrameHost();
void SetUpFrameHost();
