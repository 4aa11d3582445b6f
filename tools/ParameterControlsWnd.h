#pragma once

#include "base/Win.h"
#include "tools/Parameters.h"

// The controls of a tool's numbers. A dialog's resource has them in the order of the tool's rows;
// everything else about them is read from the rows. Window thread only.

// Numbers of the controls of a tool's first row; those of the next row follow them. A slider has a
// label, itself and its value; a check box is `box`.
struct ParameterControls
{
    Tool tool;
    int label, slider, value, box;
};

// Texts, ranges, and the numbers that they begin with.
void SetUpControls(HWND dialog, const ParameterControls& controls, const ToolNumbers& numbers);

void EnableControls(HWND dialog, const ParameterControls& controls, bool enable);

void ShowNumber(HWND dialog, const ParameterControls& controls, const ParameterRow& row,
                const ToolNumbers& numbers);

// Whose control that is; null when it is no slider, or no check box, of the tool.
const ParameterRow* SliderOf(const ParameterControls& controls, int control);
const ParameterRow* BoxOf(const ParameterControls& controls, int control);
