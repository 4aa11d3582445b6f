#pragma once

// The dark look of all standard controls of this thread: colours, and four
// message hooks that put the skin's procedure before a control's own where
// there is something to paint.

// Controls that exist already keep the look they have. A second call starts
// anew.
void InstallSkin();

// Back to the system's look for all windows made from now on. Buttons that are
// converted stay owner-drawn: windows should be gone before.
void RemoveSkin();
