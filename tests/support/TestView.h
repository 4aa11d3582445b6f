#pragma once

#include "tests/support/TestPictures.h"
#include "view/ImageViewZoom.h"

// A view with a display of its own, which is all of its area. The display starts with 77
// everywhere.
struct TestView
{
    TestPicture display;
    ImageView view;

    TestView(int displayWidth, int displayHeight) : display(displayWidth, displayHeight, 3, 8)
    {
        CBxPicBufAPI::SetConst(display.Record(), 77);
        view.display = display;
        SetViewArea(&view, {0, 0, displayWidth, displayHeight});
    }
    TestView(const TestView&) = delete;
    TestView& operator=(const TestView&) = delete;
    ~TestView() { ReleaseImageView(&view); }

    int CountOf(const std::vector<int>& bgr) const
    {
        int count = 0;
        for (int y = 0; y < display->height; ++y)
            for (int x = 0; x < display->width; ++x)
                count += display.At(x, y, 0) == bgr[0] && display.At(x, y, 1) == bgr[1] &&
                         display.At(x, y, 2) == bgr[2];
        return count;
    }
};
