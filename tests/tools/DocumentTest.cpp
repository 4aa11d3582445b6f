#include "tools/Document.h"

#include "tests/support/TestPictures.h"

#include <gtest/gtest.h>

#include <cstring>

static Picture Filled(uint8_t level)
{
    Picture picture(6, 4, 3, 8);
    std::memset(picture.Record()->data, level, size_t(picture->size));
    return picture;
}

class OpenDocument : public testing::Test
{
protected:
    Document document;

    void SetUp() override { TakeSource(&document, Filled(10), Filled(255), L"photo.png"); }
};

TEST_F(OpenDocument, GivesEachToolTheSourceToStartFrom)
{
    for (int time = 0; time < 2; ++time)
    {
        ASSERT_EQ(PrepareToolPictures(&document), Outcome::Done);
        EXPECT_FALSE(document.unsaved);
        ExpectSamePicture(document.result, document.source);
        ExpectSamePicture(document.preview, document.source);
        GiveResult(&document, Filled(77)); // the next one does not build on it
        EXPECT_TRUE(document.unsaved);
        ExpectSamePicture(document.result, Filled(77));
    }
    ExpectSamePicture(document.source, Filled(10));
}

TEST_F(OpenDocument, PutsThePreviewOverTheResultOfACancelledTool)
{
    ASSERT_EQ(PrepareToolPictures(&document), Outcome::Done);
    GiveResult(&document, Filled(77));
    RestoreResult(&document);
    EXPECT_FALSE(document.unsaved);
    ExpectSamePicture(document.result, document.source);
    EXPECT_NE(document.result->data, document.preview->data);

    GiveResult(&document, Filled(88));
    document.preview.Free();
    RestoreResult(&document);
    EXPECT_FALSE(document.result.Empty()) << "there is nothing to put over it";
}

TEST_F(OpenDocument, ForgetsAllOfThePhotographBefore)
{
    ASSERT_EQ(PrepareToolPictures(&document), Outcome::Done);
    GiveResult(&document, Filled(77));
    TakeSeries(&document, {L"a.tif", L"b.tif"});
    document.series.shown = 1;
    document.series.chosenByUser = true;
    EXPECT_EQ(document.alpha->width, document.source->width);
    TakeSource(&document, Filled(20), {}, L"next.png");
    ExpectSamePicture(document.source, Filled(20));
    EXPECT_TRUE(document.result.Empty() && document.preview.Empty() && document.alpha.Empty());
    EXPECT_TRUE(document.series.files.empty());
    EXPECT_FALSE(document.series.chosenByUser || document.unsaved);
    EXPECT_EQ(document.series.shown, 0);
    EXPECT_TRUE(document.showsSource);
    EXPECT_EQ(document.file, L"next.png");

    ForgetSource(&document);
    EXPECT_FALSE(HasPicture(document.source) || document.showsSource);
    EXPECT_EQ(document.file, L"");
}

TEST_F(OpenDocument, StopsTheJobThatRunsAndNoOther)
{
    int stops = 0;
    StopJob(document); // there is none
    BeginJob(&document, [&stops] { ++stops; });
    EXPECT_EQ(document.phase, DocumentPhase::Computing);
    StopJob(document);
    EXPECT_EQ(stops, 1);
    EndWork(&document);
    EXPECT_EQ(document.phase, DocumentPhase::Idle);
    StopJob(document);
    EXPECT_EQ(stops, 1);
}
