#pragma once

#include "base/Win.h"

#include <functional>
#include <string>
#include <vector>

// Runs a call that opens modal dialogs or message boxes, and plays the user meanwhile: each step
// gets the next dialog that opens on this thread and has to close it. Fails the test when a dialog
// opens that no step is for, when a step's dialog never comes, or when a dialog stays open; in
// the end all of them are closed, so that a wrong program cannot hang the test.
void RunModal(const std::function<void()>& call,
              const std::vector<std::function<void(HWND)>>& steps);

// What a person presses: the button's command, once the dialog is idle.
void PressButton(HWND dlg, int id);

std::wstring WindowText(HWND window);
std::wstring MessageBoxText(HWND box);
