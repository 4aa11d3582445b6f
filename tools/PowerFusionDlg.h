#pragma once

#include "text/Strings.h"

// The fusion dialog with the Power slider, over the series that the frame holds. Makes result and
// preview from the source first. `title` is the number of the text in its first line. False when
// memory is short or the dialog cannot be made.
bool ShowPowerFusionDialog(TextId title);
