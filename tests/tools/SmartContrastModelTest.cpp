#include "tools/SmartContrastModel.h"

#include "tests/support/TestPictures.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

using Lods = int[kDetailLevels];
constexpr Lods kUnchanged = {10, 10, 10, 10, 10, 10, 10, 10};

ToolNumbers NumbersOf(const Lods& lod)
{
    ToolNumbers numbers = DefaultNumbers();
    std::copy(lod, lod + kDetailLevels, numbers.levelsOfDetail);
    return numbers;
}

struct OpenModel
{
    SmartContrastModel model;

    explicit OpenModel(const TestPicture& picture, const Lods& lod = kUnchanged)
    {
        EXPECT_EQ(OpenSmartContrast(&model, picture, NumbersOf(lod)), Outcome::Done);
    }
};

TestPicture Recomposed(SmartContrastModel* model, const TestPicture& like)
{
    TestPicture out(like->width, like->height, like->components, like->bitsPerComponent);
    EXPECT_EQ(RecomposeSmartContrast(out.Record(), model, {0, 0, out->width, out->height}),
              Outcome::Done);
    return out;
}

} // namespace

TEST(SliderRule, MovesByOneAndStaysInItsRange)
{
    const struct
    {
        int value;
        SliderMove move;
        int thumb, expected;
    } cases[] = {{10, SliderMove::Down, 0, 9},    {10, SliderMove::Up, 17, 11},
                 {0, SliderMove::Down, 0, 0},     {30, SliderMove::Up, 0, 30},
                 {10, SliderMove::Drag, 25, 25},  {10, SliderMove::Drop, 3, 3},
                 {10, SliderMove::Drop, 99, 30},  {10, SliderMove::ToLow, 7, 0},
                 {10, SliderMove::ToHigh, 7, 30}, {10, SliderMove::Other, 7, 10}};
    for (const auto& c : cases)
        EXPECT_EQ(MovedSlider({0, 30}, c.value, c.move, c.thumb), c.expected)
            << c.value << " by move " << int(c.move);
}

TEST(SmartContrastModel, RecomposesWhenTheThumbIsLetGoAndWhenANumberIsNew)
{
    const TestPicture photo = ScenePicture(40, 30, 3, 8, 0);
    OpenModel open(photo);
    SmartContrastModel* model = &open.model;
    EXPECT_FALSE(HasSmartContrast(*model, {0, 0, 1, 1})) << "nothing has been made yet";
    Recomposed(model, photo);
    const struct
    {
        SliderMove move;
        int thumb, number;
        bool recompose;
    } steps[] = {
        {SliderMove::Up, 0, 11, true},     // not made: newer input was waiting
        {SliderMove::Down, 0, 10, false},  // back to what was made
        {SliderMove::Drag, 20, 20, false}, // while it is being dragged
        {SliderMove::Other, 0, 20, true},  // the end of a track makes up for it
        {SliderMove::Drag, 10, 10, false}, // and back
        {SliderMove::Drop, 10, 10, true},  // always
        {SliderMove::Other, 0, 10, false}, {SliderMove::ToHigh, 0, 30, true},
    };
    int number = 0;
    for (const auto& step : steps)
    {
        const bool recompose = SmartContrastSliderMoved(model, ParametersOf(Tool::SmartContrast)[2],
                                                        step.move, step.thumb);
        EXPECT_EQ(recompose, step.recompose) << "step " << number;
        EXPECT_EQ(model->numbers.levelsOfDetail[2], step.number) << "step " << number++;
    }
}

TEST(SmartContrastModel, GivesTheSamePictureAsTheWholeJobAsOftenAsASliderMoves)
{
    for (int components : {1, 3})
        for (int bits : {8, 16})
        {
            const TestPicture photo = ScenePicture(61, 47, components, bits, 0);
            OpenModel open(photo);
            // The last of them goes back to the start: nothing may be left of the ones before.
            const Lods tries[] = {{30, 0, 22, 10, 10, 10, 10, 10},
                                  {0, 0, 0, 0, 0, 0, 0, 0},
                                  {10, 10, 10, 10, 10, 10, 10, 10}};
            for (const Lods& lod : tries)
            {
                open.model.numbers = NumbersOf(lod);
                TestPicture whole(61, 47, components, bits);
                ASSERT_EQ(SmartContrastPicture(whole.Record(), photo, lod, {}), Outcome::Done);
                ExpectSamePicture(Recomposed(&open.model, photo), whole);
                EXPECT_TRUE(HasSmartContrast(open.model, {0, 0, 61, 47}));
            }
            ExpectSamePicture(Recomposed(&open.model, photo), photo, 1); // floats round
        }
}

// As a slider moves, the view is panned, and OK is pressed.
TEST(SmartContrastModel, PutsTogetherWhatIsVisibleAndTheRestInTheEnd)
{
    const TestPicture photo = ScenePicture(301, 203, 3, 8, 0);
    const Lods lod = {25, 3, 14, 8, 22, 10, 10, 10};
    OpenModel open(photo, lod);
    TestPicture whole(301, 203, 3, 8), shown = FlatPicture(301, 203, 8, {7, 7, 7});
    ASSERT_EQ(SmartContrastPicture(whole.Record(), photo, lod, {}), Outcome::Done);
    ImageView view;
    view.area = {0, 30, 80, 90}; // shows 80 x 60 pixels
    const CBxPoint<double> centres[] = {{0, 100},     {150.5, 100}, {290, 100}, {290, 0},
                                        {290, 101.5}, {290, 190},   {280, 30}};
    for (const auto& [x, y] : centres)
    {
        SCOPED_TRACE(testing::Message() << x << ", " << y);
        view.state = {1.0, 40, 60, x, y};
        const CBxRect<int> visible = SmartContrastVisible(view, open.model.size);
        EXPECT_LE(visible.left, std::max(x - 42, 0.0));
        EXPECT_GE(visible.right, std::min(x + 42, 301.0));
        EXPECT_LE(visible.top, std::max(y - 32, 0.0));
        EXPECT_GE(visible.bottom, std::min(y + 32, 203.0));
        EXPECT_FALSE(HasSmartContrast(open.model, visible));
        CBxPicBufAPI::SetConst(shown.Record(), 7);
        ASSERT_EQ(RecomposeSmartContrast(shown.Record(), &open.model, visible), Outcome::Done);
        const CBxRect<int> near = {std::max(visible.left - 4, 0), std::max(visible.top - 4, 0),
                                   std::min(visible.right + 4, 301),
                                   std::min(visible.bottom + 4, 203)};
        EXPECT_TRUE(HasSmartContrast(open.model, near)) << "a short way of panning";
        const CBxRect<int>& made = open.model.madePart;
        for (int row = 0; row < 203; ++row)
            for (int column = 0; column < 301; ++column)
            {
                const bool inside = column >= made.left && column < made.right && row >= made.top &&
                                    row < made.bottom;
                ASSERT_EQ(shown.At(column, row, 1), inside ? whole.At(column, row, 1) : 7)
                    << column << ", " << row;
            }
    }
    ASSERT_EQ(CompleteSmartContrast(shown.Record(), &open.model), Outcome::Done);
    ExpectSamePicture(shown, whole);
}

TEST(SmartContrastModel, TakesStoredNumbersFromOutsideOfTheRangeAsItsEnds)
{
    const TestPicture photo = ScenePicture(20, 20, 1, 8, 0);
    OpenModel open(photo, {99, -4, 30, 0, 10, 31, -1, 5});
    const Lods expected = {30, 0, 30, 0, 10, 30, 0, 5};
    EXPECT_TRUE(std::equal(expected, expected + kDetailLevels, open.model.numbers.levelsOfDetail));
}
