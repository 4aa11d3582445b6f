#include "view/ImageViewZoom.h"

#include "tests/support/TestView.h"

#include <cmath>

namespace
{
// Zooming looks at a picture's size only.
SBxPicBuf SizedPicture(int width, int height)
{
    static uint8_t sample;
    return {&sample, 0, 0, width, height, 3, 8};
}

ImageView ViewWithArea(const CBxRect<int>& area)
{
    ImageView view;
    SetViewArea(&view, area);
    return view;
}

void ExpectState(const ViewState& state, const ViewState& expected)
{
    EXPECT_DOUBLE_EQ(state.scale, expected.scale);
    EXPECT_DOUBLE_EQ(state.dstCentreX, expected.dstCentreX);
    EXPECT_DOUBLE_EQ(state.dstCentreY, expected.dstCentreY);
    EXPECT_DOUBLE_EQ(state.srcCentreX, expected.srcCentreX);
    EXPECT_DOUBLE_EQ(state.srcCentreY, expected.srcCentreY);
}
} // namespace

TEST(ViewArea, KeepsThePictureInPlaceWhenResized)
{
    // Below the toolbar, above the status bar.
    ImageView view = ViewWithArea(ViewAreaOf(700, 34, 998));
    ExpectState(view.state, {1.0, 499, 357, 0, 0});
    SetViewArea(&view, {0, 37, 700, 500});
    ExpectState(view.state, {1.0, 499, 357, 0, 0});
    RecentreView(&view);
    ExpectState(view.state, {1.0, 350, 268.5, 0, 0});
    // Minimised and back: there is nothing to keep, so the centre is taken.
    SetViewArea(&view, {0, 37, -2, 14});
    SetViewArea(&view, {0, 37, 400, 237});
    ExpectState(view.state, {1.0, 200, 137, 0, 0});
}

TEST(ZoomToFit, TakesTheSmallerRatioAndBothCentres)
{
    const struct
    {
        int areaWidth, areaHeight, width, height;
        double scale;
    } cases[] = {
        {998, 640, 1996, 640, 0.5}, {800, 600, 400, 1200, 0.5},   {800, 600, 800, 600, 1.0},
        {800, 600, 1, 1, 600.0},    {800, 600, 20000, 100, 0.04},
    };
    for (const auto& c : cases)
    {
        ImageView view = ViewWithArea({0, 37, c.areaWidth, 37 + c.areaHeight});
        view.state = {3.3, 1, 2, 3, 4};
        ASSERT_TRUE(ZoomToFit(&view, SizedPicture(c.width, c.height)));
        ExpectState(view.state, {c.scale, c.areaWidth / 2.0, 37 + c.areaHeight / 2.0, c.width / 2.0,
                                 c.height / 2.0});
    }
    ImageView minimised = ViewWithArea({0, 37, 100, 14});
    EXPECT_FALSE(ZoomToFit(&minimised, SizedPicture(10, 10)));
}

TEST(Zoom, StepsInAndOutAndWritesPercent)
{
    ImageView view = ViewWithArea({0, 37, 800, 637});
    const SBxPicBuf picture = SizedPicture(301, 200);
    ASSERT_TRUE(ZoomTo100(&view, picture));
    ExpectState(view.state, {1.0, 400, 337, 150.5, 100});
    view.state.srcCentreX = 12; // steps keep the centres, and so do presets
    for (const wchar_t* text : {L"120.0 %", L"144.0 %", L"172.8 %", L"207.4 %", L"248.8 %"})
    {
        ASSERT_TRUE(ZoomIn(&view, picture));
        EXPECT_EQ(ZoomText(view.state.scale), text);
    }
    for (int i = 0; i < 5; ++i)
        ASSERT_TRUE(ZoomOut(&view, picture));
    EXPECT_EQ(ZoomText(view.state.scale), L"100.0 %");
    const double scales[] = {0.1, 0.25, 0.5, 1, 1.5, 2, 4, 8};
    for (int i = 0; i < kZoomPresetCount; ++i)
    {
        ASSERT_TRUE(ZoomToPreset(&view, picture, i));
        EXPECT_EQ(view.state.scale, scales[i]);
        EXPECT_EQ(ZoomText(view.state.scale), kZoomPresets[i].text);
    }
    for (const int outside : {-1, 8})
    {
        view.state.scale = 5;
        ASSERT_TRUE(ZoomToPreset(&view, picture, outside));
        EXPECT_EQ(view.state.scale, 1.0);
    }
    ExpectState(view.state, {1.0, 400, 337, 12, 100});
}

// A step that has left what numbers can hold could never be taken back.
TEST(ZoomAboutCursor, KeepsThePointUnderItAndCanAlwaysComeBack)
{
    const SBxPicBuf picture = SizedPicture(2000, 1000);
    for (const bool in : {true, false})
    {
        ImageView view = ViewWithArea({0, 37, 800, 637});
        view.state = {0.7, 400, 337, 812.5, 411.25};
        int steps = 0;
        double x, y, newX, newY;
        MapOfView(view.state).MapPointDstToSrc(&x, &y, 250, 250);
        while (ZoomAboutCursor(&view, picture, in, 250, 250))
        {
            ASSERT_LT(++steps, 5000);
            MapOfView(view.state).MapPointDstToSrc(&newX, &newY, 250, 250);
            if (steps > 12)
                continue;
            ASSERT_NEAR(newX, x, 1e-9);
            ASSERT_NEAR(newY, y, 1e-9);
            ASSERT_NEAR(view.state.scale, 0.7 * std::pow(1.2, in ? steps : -steps), 1e-9);
        }
        EXPECT_GT(steps, 100) << "nobody must feel a limit";
        for (int i = 0; i < steps; ++i)
            ASSERT_TRUE(ZoomAboutCursor(&view, picture, !in, 250, 250));
        EXPECT_NEAR(view.state.scale, 0.7, 1e-9);
        EXPECT_TRUE(std::isfinite(view.state.srcCentreX));
    }
}

TEST(TypedZoom, CountsTenCharactersUpToABlankOrPercentSign)
{
    const std::pair<const wchar_t*, double> cases[] = {
        {L"150", 1.5},
        {L"150 %", 1.5},
        {L"150.", 1.5},
        {L"150%", 1.5},
        {L"1,5", 0.1},
        {L"12,55 %", 0.1255},
        {L"", 0.1},
        {L" 150", 0.1},
        {L"120.0 %", 1.2},
        {L"800.1", 8},
        {L"9.99", 0.1},
        {L"99999999999", 8},
        {L"4294967296", 8},
        {L"00000000150", 0.15},
        {L"150 abc", 1.5},
        {L"1.5.0", 0.1},
        // refused
        {L"abc", 0},
        {L"1e3", 0},
        {L"-50", 0},
        {L"15\x0660", 0},
    };
    for (const auto& [text, scale] : cases)
    {
        ImageView view = ViewWithArea({0, 37, 800, 637});
        view.state = {2.5, 1, 2, 3, 4};
        SCOPED_TRACE(testing::PrintToString(text));
        EXPECT_EQ(ZoomToTyped(&view, SizedPicture(30, 20), text), scale != 0);
        ExpectState(view.state, {scale != 0 ? scale : 2.5, 1, 2, 3, 4});
    }
}

TEST(Panning, MovesThePictureWithThePointer)
{
    const SBxPicBuf picture = SizedPicture(30, 20);
    ImageView view = ViewWithArea({0, 37, 800, 637});
    view.state = {2.0, 400, 337, 0, 0};
    ViewDrag drag;
    EXPECT_FALSE(DragTo(&drag, &view, picture, 5, 5));
    StartDrag(&drag, 100, 100);
    EXPECT_FALSE(DragTo(&drag, &view, picture, 100, 100)) << "no move, no repaint";
    EXPECT_TRUE(DragTo(&drag, &view, picture, 110, 95));
    EXPECT_TRUE(DragTo(&drag, &view, picture, 130, 88));
    ForgetDrag(&drag);
    EXPECT_FALSE(DragTo(&drag, &view, picture, 300, 300));
    ExpectState(view.state, {2.0, 400, 337, -15, 6});
}

TEST(ZoomAndPan, DoNothingWithoutAPicture)
{
    for (const SBxPicBuf& none :
         {SBxPicBuf{}, SizedPicture(0, 10), SBxPicBuf{nullptr, 0, 0, 9, 9, 3, 8}})
    {
        ImageView view = ViewWithArea({0, 37, 800, 637});
        const ViewState before = {2.0, 1, 2, 3, 4};
        view.state = before;
        ViewDrag drag;
        StartDrag(&drag, 0, 0);
        EXPECT_FALSE(ZoomIn(&view, none) || ZoomOut(&view, none) || ZoomTo100(&view, none) ||
                     ZoomToFit(&view, none) || ZoomToPreset(&view, none, 5) ||
                     ZoomToTyped(&view, none, L"150") || PanView(&view, none, 5, 5) ||
                     ZoomAboutCursor(&view, none, true, 5, 5) || DragTo(&drag, &view, none, 5, 5));
        ExpectState(view.state, before);
    }
}
