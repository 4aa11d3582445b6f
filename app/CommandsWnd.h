#pragma once

#include "base/Win.h"

// What the commands do. Each checks first whether it is switched on: keys reach commands whose
// buttons are grey.

// Runs a command by its number; 0 as the answer to WM_COMMAND.
LRESULT RunCommand(HWND frame, int id, int notification);

// Asks about a result that has not been saved; false keeps everything as it is. After a yes, the
// dialog of the tool that made the result is gone.
bool MayLoseResult();

// Room for the path of a picture that comes from outside, final zero included.
constexpr int kPathChars = 1024;

// Opens a file as the Open command does after its dialog: file dropped on the frame, file of the
// command line. False when it could not be opened, which the user has been told.
bool OpenPictureFile(const wchar_t* path);

// Switches the commands that a running tool forbids, in the toolbar and for keys.
void EnableToolCommands(bool enable);

// What was typed into the zoom box.
void ApplyTypedZoom();

void SetStatusText(const wchar_t* text);
