#pragma once

#include "text/Strings.h"

// Looking through the sources of a multi-image job.

void ShowPreviousSource();
void ShowNextSource();
void SwitchView(); // between sources and result

// "Showing 2 of 5. Use arrows to change it." with the last sentence by its number.
void ShowSourceStatus(TextId hint);
