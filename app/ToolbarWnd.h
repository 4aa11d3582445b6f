#pragma once

#include "base/Win.h"

// The toolbar with the zoom box in it, and the command menu that its last button pops up.

// Makes toolbar and zoom box as children of the frame. False when the toolbar cannot be made.
bool CreateToolbar(HWND frame);

// On every size of the frame: full width, the zoom group at the right edge, the zoom box on its
// place.
void LayoutToolbar();

// Height of the toolbar's client area; 0 before there is one.
int ToolbarClientHeight();

// Brings buttons and zoom box to what FrameCommands says.
void ShowCommandStates();

void SetZoomBoxText(const wchar_t* text);
void SelectInitialZoom();

// Runs the menu at the button; the command chosen arrives at the frame as WM_COMMAND.
void PopUpCommandMenu();

// Answers TTN_GETDISPINFOW; false for what has no tooltip.
bool GiveTooltip(NMHDR* request);
