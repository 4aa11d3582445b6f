#pragma once

#include <memory>

struct FusionSources;

// The fusion dialog with the Exposure slider, over the series that the frame holds; `sources` is
// that series as far as it has been read already. Makes result and preview from the source first.
// False when memory is short or the dialog cannot be made.
bool ShowExposureFusionDialog();
bool ShowExposureFusionDialog(std::unique_ptr<FusionSources> sources);
