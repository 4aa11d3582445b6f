#pragma once

#include "base/Win.h"

// Keys of a converted button that looks like a push button, in dialogs that are
// modal: the system takes an owner-drawn button for something else, and would
// not press it. True when the key has been used up.
bool HandleButtonKey(const MSG& message);
