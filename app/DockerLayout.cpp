#include "app/DockerLayout.h"

#include <algorithm>

DockerLayout LayOutDocked(const std::vector<CBxSize<int>>& windows, int frameClientWidth,
                          bool dockedLeft)
{
    DockerLayout layout;
    int widest = 0, y = 0;
    for (const CBxSize<int>& window : windows)
    {
        layout.origins.push_back({dockedLeft ? 0 : 1, y});
        widest = std::max(widest, window.cx);
        y += window.cy;
    }
    layout.width = widest + 1;
    layout.left = dockedLeft ? 0 : frameClientWidth - layout.width - 1;
    return layout;
}
