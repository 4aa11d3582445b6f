#pragma once

// What a tool's slider does when it is moved. The same for every tool: steps by line and by page
// are both one, and the thumb counts where it is.

enum class SliderMove
{
    Down,  // line or page towards the low end
    Up,    // line or page towards the high end
    Drag,  // the thumb is being dragged
    Drop,  // the thumb has been let go
    ToLow, // to the low end at once
    ToHigh,
    Other, // nothing that changes the value
};

struct SliderRange
{
    int low, high;
};

// The slider's new value, within its range. `thumb` is the thumb's position for Drag and Drop.
int MovedSlider(const SliderRange& range, int value, SliderMove move, int thumb);
