#include "tools/SliderRules.h"

#include <algorithm>

int MovedSlider(const SliderRange& range, int value, SliderMove move, int thumb)
{
    switch (move)
    {
    case SliderMove::Down: --value; break;
    case SliderMove::Up: ++value; break;
    case SliderMove::Drag:
    case SliderMove::Drop: value = thumb; break;
    case SliderMove::ToLow: return range.low;
    case SliderMove::ToHigh: return range.high;
    case SliderMove::Other: break;
    }
    return std::clamp(value, range.low, range.high);
}
