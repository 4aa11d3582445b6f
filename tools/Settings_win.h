#pragma once

#include "base/Win.h"
#include "tools/Settings.h"

// Tells the user which file was not written last, and why. The last step of whatever it ends, since
// messages are handled meanwhile. The owner may have gone.
void TellSettingsUnsaved(HWND owner);
