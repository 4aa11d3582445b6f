#include "view/ImageViewZoom.h"

#include "tests/support/TestView.h"

#include <gtest/gtest.h>

namespace
{
TestPicture Pattern(int width, int height, int components, int bits)
{
    return PictureOf(width, height, components, bits,
                     [&](int x, int y, int c)
                     { return ((x * 53 + y * 101 + c * 29) % 251) * (bits == 8 ? 1 : 256) + c; });
}

bool Show(ImageView* view, const TestPicture& picture, const TestPicture* alpha = nullptr)
{
    return VcRenderView(view, ViewRebuild::Rebuild, picture.Record(), ViewShows::Source, true,
                        alpha ? alpha->Record() : nullptr);
}

bool ShowAgain(ImageView* view, ViewRebuild rebuild, ViewShows which = ViewShows::Source)
{
    return VcRenderView(view, rebuild, nullptr, which, true, nullptr);
}
} // namespace

// The area's top is in the centre's coordinates but not in the display's.
TEST(Rendering, PutsPicturePixelsWhereTheMapSaysForEveryFilter)
{
    for (const ViewFilter filter : {ViewFilter::Nearest, ViewFilter::Bilinear, ViewFilter::Bicubic})
    {
        TestView t(300, 200);
        // Four flat quarters: away from their borders all filters agree.
        const TestPicture picture =
            PictureOf(16, 16, 3, 8,
                      [](int x, int y, int c) { return 20 + 100 * (x / 8) + 50 * (y / 8) + c; });
        SetViewArea(&t.view, {0, 37, 260, 197});
        t.view.filter = filter;
        ASSERT_TRUE(ZoomToPreset(&t.view, picture, kZoomPresetCount - 1)); // 800 %
        t.view.state.srcCentreX = t.view.state.srcCentreY = 8;
        ASSERT_FALSE(Show(&t.view, picture));
        int left, top;
        MapOfView(t.view.state).MapPointSrcToDst(&left, &top, 0, 0);
        EXPECT_EQ(left, 130 - 64);
        EXPECT_EQ(top, 37 + 80 - 64);
        for (int y = 0; y < 200; ++y)
            for (int x = 0; x < 300; ++x)
            {
                const int sx = x - left, sy = y + 37 - top; // in eighths of a picture's pixel
                const bool inArea = x < 260 && y < 160;
                const bool inside = sx >= 0 && sx < 128 && sy >= 0 && sy < 128;
                if (inside && (std::abs(sx - 64) < 20 || std::abs(sy - 64) < 20))
                    continue;
                ASSERT_EQ(t.display.At(x, y, 1), !inArea  ? 77
                                                 : inside ? picture.At(sx / 8, sy / 8, 1)
                                                          : 190)
                    << x << ", " << y;
            }
    }
}

TEST(Rendering, ShowsEveryKindOfPictureAs8BitColour)
{
    for (const int bits : {8, 16, 32})
        for (const int components : {1, 3})
        {
            SCOPED_TRACE(testing::Message() << bits << " bits, " << components);
            TestView t(40, 30);
            const auto sample = [&](int x, int y, int c) { return x * 5 + y + c * 10; };
            const TestPicture picture = PictureOf(40, 30, components, bits,
                                                  [&](int x, int y, int c) {
                                                      return bits == 16 ? sample(x, y, c) * 256 + 77
                                                                        : sample(x, y, c) + 0.25;
                                                  });
            ASSERT_TRUE(ZoomTo100(&t.view, picture));
            ASSERT_FALSE(Show(&t.view, picture));
            ExpectSamePicture(t.display, PictureOf(40, 30, 3, 8,
                                                   [&](int x, int y, int c) {
                                                       return sample(x, y, components == 3 ? c : 0);
                                                   }));
        }
}

TEST(Rendering, UsesCachesUntilTheyAreRebuilt)
{
    TestView t(20, 20);
    const TestPicture first = FlatPicture(20, 20, 8, {10, 20, 30});
    const TestPicture second = FlatPicture(20, 20, 8, {40, 50, 60});
    ZoomTo100(&t.view, first);
    ASSERT_FALSE(Show(&t.view, first));
    // Only the cache: the display stays.
    ASSERT_FALSE(VcRenderView(&t.view, ViewRebuild::Rebuild, second.Record(), ViewShows::Result,
                              false, nullptr));
    EXPECT_EQ(t.display.At(5, 5), 10);
    ASSERT_FALSE(ShowAgain(&t.view, ViewRebuild::Keep, ViewShows::Result));
    EXPECT_EQ(t.display.At(5, 5), 40);
    ASSERT_FALSE(ShowAgain(&t.view, ViewRebuild::Keep, ViewShows::Source));
    EXPECT_EQ(t.display.At(5, 5), 10);

    for (const auto& [scheme, grey] : {std::pair(2, 48), {3, 48}, {1, 190}})
    {
        t.view.colourScheme = scheme;
        ASSERT_FALSE(ShowAgain(&t.view, ViewRebuild::Keep, ViewShows::Nothing));
        EXPECT_EQ(t.CountOf({grey, grey, grey}), 400);
    }
    ForgetViewPicture(&t.view);
    EXPECT_TRUE(ShowAgain(&t.view, ViewRebuild::Keep, ViewShows::Source));
    EXPECT_TRUE(ShowAgain(&t.view, ViewRebuild::Rebuild, ViewShows::Result));
}

TEST(CopyingTheRenderedView, BringsItBackUnlessTheAreaHasChanged)
{
    TestView t(60, 50);
    SetViewArea(&t.view, {0, 10, 50, 50});
    EXPECT_TRUE(ShowAgain(&t.view, ViewRebuild::CopyOnly)) << "nothing rendered yet";
    const TestPicture picture = Pattern(30, 30, 3, 8);
    const TestPicture alpha = FlatPicture(30, 30, 8, {99});
    ZoomToFit(&t.view, picture);
    ASSERT_FALSE(Show(&t.view, picture, &alpha));
    TestPicture rendered(60, 50, 3, 8);
    CBxPicBufAPI::Copy(rendered.Record(), t.display);
    CBxPicBufAPI::SetConst(t.display.Record(), {5, 5, 40, 30}, 1);
    ASSERT_FALSE(ShowAgain(&t.view, ViewRebuild::CopyOnly));
    ExpectSamePicture(t.display, rendered);

    SetViewArea(&t.view, {0, 12, 50, 52}); // moved only
    EXPECT_FALSE(ShowAgain(&t.view, ViewRebuild::CopyOnly));
    SetViewArea(&t.view, {0, 12, 51, 52});
    EXPECT_TRUE(ShowAgain(&t.view, ViewRebuild::CopyOnly));
}

TEST(Rendering, RefusesAMinimisedWindowButStillTakesTheNewPicture)
{
    for (const CBxRect<int>& area :
         {CBxRect<int>{0, 37, 100, 37}, {0, 37, 100, 14}, {0, 37, -2, 100}, {0, 37, 0, 100}})
    {
        TestView t(20, 20);
        SetViewArea(&t.view, area);
        EXPECT_TRUE(Show(&t.view, Pattern(4, 4, 3, 8)));
        EXPECT_EQ(t.CountOf({77, 77, 77}), 400);
        SetViewArea(&t.view, {0, 37, 20, 57});
        EXPECT_FALSE(ShowAgain(&t.view, ViewRebuild::Keep));
    }
}

TEST(Rendering, IsCutWhereTheDisplayEnds)
{
    TestView t(3000, 2000);
    SetViewArea(&t.view, {0, 37, 3840, 2160 + 37});
    const TestPicture picture = Pattern(64, 64, 3, 8);
    const TestPicture alpha = FlatPicture(64, 64, 8, {200});
    const CBxRect<int> rect = {-5, -5, 70, 70};
    t.view.previewRect = &rect;
    t.view.points = {{1, 1, false}, {60, 60, true}};
    t.view.showPoints = true;
    ASSERT_TRUE(ZoomToFit(&t.view, picture));
    ASSERT_FALSE(Show(&t.view, picture, &alpha));
    EXPECT_EQ(t.CountOf({77, 77, 77}), 0);
    ASSERT_FALSE(ShowAgain(&t.view, ViewRebuild::CopyOnly));
    EXPECT_EQ(t.display.At(0, 0), 190);
}

TEST(AlphaPlane, ShowsAsMuchCheckerboardAsItSays)
{
    // Alpha, and what it leaves of a sample of 100 on either field.
    const double cases[][3] = {{0, 190, 220}, {1, 189, 219}, {128, 144, 159}, {255, 100, 100}};
    for (const auto& [opacity, same, differing] : cases)
    {
        TestView t(80, 64);
        SetViewArea(&t.view, {0, 20, 80, 84});
        const TestPicture picture = FlatPicture(60, 64, 8, {100, 100, 100});
        const TestPicture alpha = FlatPicture(60, 64, 8, {opacity});
        ZoomTo100(&t.view, picture); // columns 10 .. 69
        ASSERT_FALSE(Show(&t.view, picture, &alpha));
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < 80; ++x)
            {
                const double field = x / 15 % 2 == y / 15 % 2 ? same : differing;
                ASSERT_EQ(t.display.At(x, y, 2), x < 10 || x >= 70 ? 190 : field)
                    << opacity << ": " << x << ", " << y;
            }
    }
}

TEST(AlphaPlane, FollowsThePictureAndIsRebuiltWithIt)
{
    TestView t(64, 64);
    const TestPicture picture = FlatPicture(8, 8, 16, {25600, 25600, 25600});
    // The left half is opaque; 16 bits are reduced like the picture's.
    const TestPicture alpha =
        PictureOf(8, 8, 1, 16, [](int x, int, int) { return x < 4 ? 65535 : 0; });
    const TestPicture mirrored =
        PictureOf(8, 8, 1, 16, [](int x, int, int) { return x < 4 ? 0 : 65535; });
    t.view.filter = ViewFilter::Nearest;
    ZoomToFit(&t.view, picture);
    ASSERT_FALSE(Show(&t.view, picture, &alpha));
    EXPECT_EQ(t.display.At(31, 20), 100);
    EXPECT_EQ(t.display.At(32, 20), 220);
    // Kept caches ignore a changed plane; a rebuild takes it.
    ASSERT_FALSE(VcRenderView(&t.view, ViewRebuild::Keep, nullptr, ViewShows::Source, true,
                              mirrored.Record()));
    EXPECT_EQ(t.display.At(31, 20), 100);
    ASSERT_FALSE(Show(&t.view, picture, &mirrored));
    EXPECT_EQ(t.display.At(31, 20), 220);
    EXPECT_EQ(t.display.At(32, 20), 100);
    // Without a plane, or with an empty one, there is no checkerboard.
    const SBxPicBuf empty = {};
    ASSERT_FALSE(
        VcRenderView(&t.view, ViewRebuild::Keep, nullptr, ViewShows::Source, true, &empty));
    EXPECT_EQ(t.CountOf({100, 100, 100}), 64 * 64);
}

TEST(Overlays, LieOverThePictureInDisplayCoordinates)
{
    TestView t(100, 100);
    SetViewArea(&t.view, {0, 30, 100, 130});
    const TestPicture picture = FlatPicture(50, 50, 8, {90, 90, 90});
    const CBxRect<int> rect = {5, 5, 25, 20};
    ZoomToFit(&t.view, picture); // 200 %
    t.view.previewRect = &rect;
    ASSERT_FALSE(Show(&t.view, picture));
    EXPECT_EQ(t.CountOf({165, 165, 165}), 272);
    EXPECT_EQ(t.display.At(10, 10), 165);
    EXPECT_EQ(t.display.At(50, 40), 165);
    EXPECT_EQ(t.display.At(51, 40), 90);

    t.view.previewRect = nullptr;
    t.view.points = {{10.0, 20.0, true}};
    ASSERT_FALSE(ShowAgain(&t.view, ViewRebuild::Keep));
    EXPECT_EQ(t.CountOf({90, 90, 90}), 10000) << "switched off";
    t.view.showPoints = true;
    ASSERT_FALSE(ShowAgain(&t.view, ViewRebuild::Keep));
    EXPECT_EQ(t.CountOf({100, 250, 250}), 56);
    EXPECT_EQ(t.display.At(20 - 4, 40 - 4, 0), 100);
    ASSERT_EQ(t.view.screenPoints.size(), 1u);
    EXPECT_EQ(t.view.screenPoints[0].x, 20);
    EXPECT_EQ(t.view.screenPoints[0].y, 40 + 30) << "client coordinates, like the mouse";
    EXPECT_TRUE(t.view.screenPoints[0].selected);
    EXPECT_GE(t.view.screenPoints.capacity(), t.view.points.capacity());
}
