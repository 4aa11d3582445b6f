#include "tools/ToneMapModel.h"

#include "tests/support/TestPictures.h"

#include <set>
#include <vector>

namespace
{

const ParameterRows kRows = ParametersOf(Tool::ToneMap);
const ParameterRow &kFirst = kRows[0], &kSecond = kRows[1], &kColors = kRows[4];

// A photograph, a preview picture that starts as a copy of it, and the model over both.
struct OpenTool
{
    TestPicture source, preview;
    ToneMapModel model;

    OpenTool(int width, int height, int components = 3, int bits = 8)
        : source(ScenePicture(width, height, components, bits, 0)),
          preview(ScenePicture(width, height, components, bits, 0))
    {
        StartToneMapModel(&model, source, DefaultNumbers());
    }

    void Render()
    {
        EXPECT_EQ(RenderToneMapPreview(preview.Record(), &model, source), Outcome::Done);
    }

    // Samples of the preview that are not the source's, inside and outside of a rectangle.
    void CountChanges(const CBxRect<int>& rect, int* inside, int* outside) const
    {
        *inside = *outside = 0;
        for (int y = 0; y < source->height; ++y)
            for (int x = 0; x < source->width; ++x)
            {
                const bool within =
                    x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
                for (int c = 0; c < source->components; ++c)
                    *(within ? inside : outside) += source.At(x, y, c) != preview.At(x, y, c);
            }
    }
};

void ExpectRect(const CBxRect<int>& a, const CBxRect<int>& b)
{
    EXPECT_EQ((std::vector<int>{a.left, a.top, a.right, a.bottom}),
              (std::vector<int>{b.left, b.top, b.right, b.bottom}));
}

} // namespace

TEST(PreviewRectangle, ReachesAsFarAsThePicture)
{
    const struct
    {
        CBxPoint<double> centre;
        CBxSize<int> picture;
        CBxRect<int> rect;
    } cases[] = {
        {{1000.7, 600.2}, {2832, 2128}, {744, 344, 1256, 856}},
        {{256, 257}, {2832, 2128}, {0, 1, 512, 513}},
        {{10, 2120}, {2832, 2128}, {0, 1864, 266, 2128}},
        {{50, 50}, {100, 80}, {0, 0, 100, 80}},
        {{-4000, 9000}, {2832, 2128}, {0, 1872, 256, 2128}}, // panned out of sight
        {{0, 0}, {1, 1}, {0, 0, 1, 1}},
    };
    for (const auto& c : cases)
        ExpectRect(PreviewRectAround(c.centre, c.picture), c.rect);
}

TEST(ToneMapModel, RendersThePreviewOnlyWhenItIsOnAndBehind)
{
    OpenTool tool(60, 50);
    ToneMapModel* model = &tool.model;
    EXPECT_FALSE(ToneMapSliderMoved(model, kFirst, SliderMove::Up, 0)) << "the preview is off";
    EXPECT_EQ(model->numbers.toneMap.contrast, 11);
    EXPECT_FALSE(ToneMapSliderMoved(model, kFirst, SliderMove::Drop, 20));
    EXPECT_TRUE(ToneMapPreviewToggled(model, true, {30, 25}));
    tool.Render();

    const struct
    {
        SliderMove move;
        int thumb, value;
        bool render;
    } steps[] = {{SliderMove::Up, 0, 21, true},     {SliderMove::Down, 0, 20, false},
                 {SliderMove::Drag, 33, 33, false}, {SliderMove::Other, 0, 33, true},
                 {SliderMove::Drop, 20, 20, true},  {SliderMove::Other, 0, 20, false},
                 {SliderMove::Drop, 0, 1, true},    {SliderMove::ToHigh, 0, 50, true}};
    for (const auto& step : steps)
    {
        EXPECT_EQ(ToneMapSliderMoved(model, kFirst, step.move, step.thumb), step.render)
            << "move " << int(step.move) << " to " << step.value;
        EXPECT_EQ(model->numbers.toneMap.contrast, step.value);
    }
    tool.Render();
    EXPECT_TRUE(ToneMapBoxToggled(model, kColors, false));
    EXPECT_FALSE(ToneMapBoxToggled(model, kColors, true)) << "as it was rendered";
}

TEST(ToneMapModel, FiltersTheRectangleAndLeavesTheRestOfThePictureAlone)
{
    for (int bits : {8, 16})
    {
        OpenTool tool(700, 40, 3, bits);
        ToneMapPreviewToggled(&tool.model, true, {500, 20});
        tool.Render();
        int inside, outside;
        tool.CountChanges({244, 0, 700, 40}, &inside, &outside);
        EXPECT_GT(inside, 10000);
        EXPECT_EQ(outside, 0);

        // The same as the filter makes of the cut-out alone.
        TestPicture crop(456, 40, 3, bits), shown(456, 40, 3, bits);
        CBxPicBufAPI::CopyRect(crop.Record(), tool.source, {0, 0}, {244, 0}, {456, 40});
        CBxPicBufAPI::CopyRect(shown.Record(), tool.preview, {0, 0}, {244, 0}, {456, 40});
        ToneMapParams tens = ToneMapParamsOf(DefaultNumbers().toneMap);
        tens.contrast = tens.noiseAmplitude = double(11 / 50.0f);
        tens.details = 0.5;
        tens.equalization = double(40 / 50.0f);
        ASSERT_EQ(ToneMapPicture(crop.Record(), crop, 5, tens), Outcome::Done);
        ExpectSamePicture(shown, crop);

        EXPECT_TRUE(ToneMapViewMoved(&tool.model, {100, 20}));
        EXPECT_FALSE(ToneMapViewMoved(&tool.model, {100, 20})) << "the view stands still";
        tool.Render();
        tool.CountChanges({0, 0, 356, 40}, &inside, &outside);
        EXPECT_GT(inside, 10000);
        EXPECT_EQ(outside, 0) << "where the rectangle was before";

        EXPECT_FALSE(ToneMapPreviewToggled(&tool.model, false, {100, 20}));
        tool.Render();
        ExpectSamePicture(tool.preview, tool.source);
    }
}

TEST(ToneMapModel, LetsTheRectangleBeDraggedByItsInside)
{
    OpenTool tool(2000, 1500);
    ToneMapModel* model = &tool.model;
    const CBxRect<int> all = {0, 0, 2000, 1500};
    EXPECT_FALSE(GrabPreviewRect(model, {1000, 700}, all)) << "the preview is off";
    ToneMapPreviewToggled(model, true, {1000, 700});
    tool.Render();
    EXPECT_FALSE(GrabPreviewRect(model, {1256, 700}, all)) << "outside";
    EXPECT_FALSE(DragPreviewRect(model, {1300, 700}));
    EXPECT_FALSE(GrabPreviewRect(model, {1000, 700}, {800, 500, 1200, 900})) << "no edge in view";

    ASSERT_TRUE(GrabPreviewRect(model, {1100, 650}, {800, 0, 1200, 900}));
    EXPECT_FALSE(DropPreviewRect(model)) << "it has not moved";
    ASSERT_TRUE(GrabPreviewRect(model, {1100, 650}, all));
    EXPECT_TRUE(DragPreviewRect(model, {1110, 640}));
    ExpectRect(model->previewRect, {754, 434, 1266, 946});
    EXPECT_FALSE(DragPreviewRect(model, {1110, 640}));
    EXPECT_TRUE(DragPreviewRect(model, {-900, 640}));
    ExpectRect(model->previewRect, {0, 434, 256, 946});
    EXPECT_TRUE(DropPreviewRect(model));
    EXPECT_FALSE(DragPreviewRect(model, {500, 500})) << "let go";
    EXPECT_FALSE(DropPreviewRect(model));

    // The view takes it along again, also out of a hand that holds it, as switching it on does.
    EXPECT_TRUE(ToneMapViewMoved(model, {1500, 1000}));
    ExpectRect(model->previewRect, {1244, 744, 1756, 1256});
    ASSERT_TRUE(GrabPreviewRect(model, {1300, 800}, all));
    EXPECT_TRUE(ToneMapViewMoved(model, {1010, 700}));
    EXPECT_FALSE(DragPreviewRect(model, {1310, 810}));
    ASSERT_TRUE(GrabPreviewRect(model, {1100, 650}, all));
    ToneMapPreviewToggled(model, true, {1000, 700});
    EXPECT_FALSE(DragPreviewRect(model, {1110, 640}));
    ExpectRect(model->previewRect, {744, 444, 1256, 956});
}

TEST(ToneMapModel, GoesFromEditingToARunAndToItsEnd)
{
    OpenTool tool(60, 50);
    ToneMapModel* model = &tool.model;
    ToneMapPreviewToggled(model, true, {30, 25});
    const auto expectSteps = [&](ToneMapStep ok, ToneMapStep cancel, ToneMapStep stop)
    {
        EXPECT_EQ(ToneMapOk(*model), ok);
        EXPECT_EQ(ToneMapCancel(*model), cancel);
        EXPECT_EQ(ToneMapStop(*model), stop);
    };
    expectSteps(ToneMapStep::StartRun, ToneMapStep::GiveUp, ToneMapStep::Nothing);

    ToneMapRunStarted(model);
    EXPECT_FALSE(IsPreviewShown(*model));
    expectSteps(ToneMapStep::Nothing, ToneMapStep::Nothing, ToneMapStep::Stop);
    EXPECT_FALSE(ToneMapSliderMoved(model, kSecond, SliderMove::Up, 0));
    EXPECT_EQ(model->numbers.toneMap.noiseAmplitude, 10);
    EXPECT_FALSE(GrabPreviewRect(model, {30, 25}, {0, 0, 1000, 1000}));

    ToneMapRunEnded(model, false); // stopped: as before, and the preview is wanted again
    EXPECT_TRUE(IsPreviewShown(*model));
    EXPECT_TRUE(ToneMapSliderMoved(model, kSecond, SliderMove::Other, 0)) << "forgotten by the run";
    expectSteps(ToneMapStep::StartRun, ToneMapStep::GiveUp, ToneMapStep::Nothing);

    ToneMapRunStarted(model);
    ToneMapRunEnded(model, true);
    EXPECT_FALSE(IsPreviewShown(*model));
    expectSteps(ToneMapStep::Close, ToneMapStep::Close, ToneMapStep::Nothing);
}

TEST(ToneMapModel, KnowsHowLongARunIs)
{
    const int cases[][3] = {{1, true, 17}, {1, false, 17}, {3, false, 17}, {3, true, 47}};
    for (const auto& [components, useColors, end] : cases)
    {
        OpenTool tool(20, 20, components);
        ToneMapBoxToggled(&tool.model, kColors, useColors != 0);
        EXPECT_EQ(ToneMapProgressEnd(tool.model), end);
        // All but two steps are really taken.
        int steps = 0;
        RunControl control;
        control.progress = [&](int n) { steps += n; };
        (void)ToneMapPicture(tool.preview.Record(), tool.source, kToneMapLevels,
                             ToneMapParamsOf(tool.model.numbers.toneMap), control);
        EXPECT_EQ(steps, end - 2);
    }
}

TEST(ToneMapModel, HasAFilterThatListensToEveryControl)
{
    const TestPicture photo = ScenePicture(48, 40, 3, 8, 1);
    const auto filtered = [&](const ToolNumbers& numbers)
    {
        TestPicture out(48, 40, 3, 8);
        EXPECT_EQ(
            ToneMapPicture(out.Record(), photo, kToneMapLevels, ToneMapParamsOf(numbers.toneMap)),
            Outcome::Done);
        return HashOf(out);
    };
    std::set<uint64_t> results = {filtered(DefaultNumbers())};
    for (const ParameterRow& row : kRows)
    {
        ToolNumbers numbers = OpenedNumbers(Tool::ToneMap, DefaultNumbers());
        int* number = NumberAt(&numbers, row);
        *number = row.kind == ParameterKind::CheckBox ? !*number : row.stored.range.high;
        EXPECT_TRUE(results.insert(filtered(numbers)).second) << row.option;
    }
}
