#pragma once

#include "text/Strings.h"
#include "tools/ToolHost_win.h"

// The fusion dialog with the Power slider, over the document's series. Makes result and preview
// from the source first. `title` is the number of the text in its first line. False when memory is
// short or the dialog cannot be made.
bool ShowPowerFusionDialog(const ToolHost& host, TextId title);
