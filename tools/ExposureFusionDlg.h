#pragma once

#include "pipeline/FusionSources.h"
#include "tools/ToolHost_win.h"

#include <memory>

// The fusion dialog with the Exposure slider, over the document's series; `sources` is that series
// as far as it has been read already. Makes result and preview from the source first. False when
// memory is short or the dialog cannot be made.
bool ShowExposureFusionDialog(const ToolHost& host,
                              std::unique_ptr<FusionSources> sources = nullptr);
