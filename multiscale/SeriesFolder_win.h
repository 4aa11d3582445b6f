#pragma once

#include <string>

// The folder for the files of a series, in the program's own folder of the application data. Makes
// it when it is missing and deletes the files of the last series; folders in it stay. The name
// comes with a separator at its end. False when there is no such folder and none can be made.
bool PrepareSeriesFolder(std::wstring* folder);
