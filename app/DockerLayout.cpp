#include "app/DockerLayout.h"

#include <algorithm>

DockerLayout LayOutDocked(const std::vector<CBxSize<int>>& windows, int frameClientWidth)
{
    DockerLayout layout;
    int widest = 0, y = 0;
    for (const CBxSize<int>& window : windows)
    {
        layout.origins.push_back({1, y});
        widest = std::max(widest, window.cx);
        y += window.cy;
    }
    layout.width = widest + 1;
    layout.left = frameClientWidth - layout.width - 1;
    return layout;
}
