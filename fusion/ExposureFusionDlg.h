#pragma once

// The fusion dialog with the Exposure slider, over the series that the frame holds. Makes result
// and preview from the source first. False when memory is short or the dialog cannot be made.
bool ShowExposureFusionDialog();
