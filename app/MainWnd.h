#pragma once

#include "base/Win.h"

// The frame window: toolbar, view, docker, status bar, and the messages by which tools talk to it.

// False when the class cannot be registered.
bool RegisterMainWindowClass(HINSTANCE instance, const wchar_t* className);

// Makes and shows the frame. False when it cannot be made.
bool InitInstance(HINSTANCE instance, const wchar_t* className, const wchar_t* title, int show);

// Until the program ends; the code it ends with.
int RunMessageLoop(HACCEL accelerators);
