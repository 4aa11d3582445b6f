#pragma once

#include "base/Outcome.h"

#include <string>

// The folder for the files of a series, in the program's own folder of the application data. Makes
// it when it is missing and deletes the files of the last series; folders in it stay. The name
// comes with a separator at its end. Another instance of the program has a folder of its own, whose
// name has a number. Fails when there is no such folder and none can be made.
Outcome PrepareSeriesFolder(std::wstring* folder);

// Gives the folder back, so that others may take it.
void ForgetSeriesFolder();
