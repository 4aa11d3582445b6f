#pragma once

#include "skin/SkinWindow_win.h"

// Popup menus draw their items whenever the selection moves, without any
// message to stand before. So while a popup is open, its items are owner-drawn;
// afterwards they are what they were. The system's own menu (of the title bar)
// and items that are bitmaps keep their look.

// Before a popup opens (WM_INITMENUPOPUP), and after it has closed.
void OwnerDrawMenu(HMENU menu);
void RestoreMenu(HMENU menu);

// Answers to the messages that the menu's owner gets. False when the item is
// not one of ours.
bool DrawMenuItem(const SkinCall& call, LRESULT* answer);
bool MeasureMenuItem(const SkinCall& call, LRESULT* answer);

// Underlined letters, which the system leaves to whoever draws the items.
bool FindMenuLetter(const SkinCall& call, LRESULT* answer);

// Where on the screen the items of an open popup's window are. False when they
// are not ours.
bool MenuItemsPlace(HWND popup, RECT* place);

void ReleaseMenuFont();
