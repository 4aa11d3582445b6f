#pragma once

#include "base/Win.h"

// The Options dialog: which language the texts are in. Runs until it is closed.
//
// It starts by loading all settings again, even if it is cancelled in the end: numbers of tools
// that have not been stored go back to the file's, and the crash marker is set once more. A new
// language shows at the next start of the program, and the dialog says so; when the choice did not
// reach the file it says that instead, since a restart would then change nothing.
void ShowOptionsDialog(HWND owner);
