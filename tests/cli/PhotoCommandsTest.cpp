#include "tests/cli/CliRun.h"

#include "multiscale/LevelsOfDetail.h"
#include "multiscale/ToneMap.h"

namespace
{

std::vector<std::string> Lines(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

using PhotoCommand = InFolder;

TEST_F(PhotoCommand, EqualsItsSeriesFused)
{
    const struct
    {
        std::string command;
        std::vector<std::string> options, seriesOptions, fuseOptions;
        size_t files, fused; // written, and of these fused
    } cases[] = {
        {"single", {"--noise", "medium"}, {"--noise", "medium"}, {}, 11, 11},
        {"daylight-up", {"--power", "7"}, {}, {"--exposure", "128"}, 39, 7},
        {"daylight-down", {"--power", "7"}, {}, {"--exposure", "128"}, 39, 7},
    };
    const std::string photo = Put("photo.png", ScenePicture(70, 52, 3, 16, 0));
    const std::string direct = folder.File("direct.png"), fused = folder.File("fused.png");
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.command);
        ASSERT_EQ(RunCli(Joined({c.command, "-q", "-o", direct, photo}, c.options)).code, 0);
        const std::string dir = folder.File(c.command);
        const Outcome series =
            RunCli(Joined({"series", c.command, "--out-dir", dir, photo}, c.seriesOptions));
        ASSERT_EQ(series.code, 0) << series.err;
        const std::vector<std::string> names = Lines(series.out);
        ASSERT_EQ(names.size(), c.files);
        std::vector<std::string> fuse = Joined({"fuse", "-q", "-o", fused}, c.fuseOptions);
        for (size_t i = 0; i < c.fused; ++i)
            fuse.push_back(dir + "/" + names[i]);
        ASSERT_EQ(RunCli(fuse).code, 0);
        ExpectSamePicture(LoadedPair(direct).picture.pic, LoadedPair(fused).picture.pic);
    }
    // The sixth exposure is the photograph itself.
    ExpectSamePicture(LoadedPair(folder.File("single/file_005.tif")).picture.pic,
                      LoadedPair(photo).picture.pic);
}

TEST_F(PhotoCommand, ToneMapAndSmartContrastTakeTheirSliders)
{
    const TestPicture scene = ScenePicture(64, 50, 3, 8, 0);
    const std::string photo = Put("photo.png", scene), out = folder.File("out.png");
    ASSERT_EQ(RunCli({"tone-map", "-q", "--contrast", "20", "--details=30", "--luminance-only",
                      "-o", out, photo})
                  .code,
              0);
    TestPicture expected(64, 50, 3, 8);
    const ToneMapParams p = ToneMapParamsOf(20, 10, 30, 10);
    ASSERT_EQ(ToneMapPicture(&expected.pic, scene.pic, 5, p.p1, p.p2, p.p3, p.p4, false),
              kToneMapDone);
    ExpectSamePicture(LoadedPair(out).picture.pic, expected.pic);

    ASSERT_EQ(RunCli({"smart-contrast", "-q", "-o", out, photo}).code, 0);
    ExpectSamePicture(LoadedPair(out).picture.pic, scene.pic, 1.0);
    ASSERT_EQ(RunCli({"smart-contrast", "-q", "--lod", "30,0,7,8,9,1,2,3", "-o", out, photo}).code,
              0);
    const int levels[kDetailLevels] = {30, 0, 7, 8, 9, 1, 2, 3};
    ASSERT_FALSE(SmartContrastPicture(&expected.pic, scene.pic, levels, {}));
    ExpectSamePicture(LoadedPair(out).picture.pic, expected.pic);
}

TEST_F(PhotoCommand, GoesOnAfterAPhotographThatFailed)
{
    const std::string first = Put("first.png", ScenePicture(20, 16, 3, 8, 0));
    const std::string junk = folder.Write("junk.jpg", {1, 2, 3});
    const std::string last = Put("last.tif", ScenePicture(20, 16, 1, 16, 0));
    const std::string out = folder.File("results");
    const Outcome outcome = RunCli({"smart-contrast", "--out-dir", out, first, junk, last}, true);
    EXPECT_EQ(outcome.code, 1);
    EXPECT_NE(outcome.err.find("plenoviz-cli: " + junk + ": "), std::string::npos) << outcome.err;
    EXPECT_NE(outcome.err.find("1 of 3 pictures failed\n"), std::string::npos) << outcome.err;
    EXPECT_NE(outcome.err.find(" %"), std::string::npos) << "progress on a terminal";
    EXPECT_FALSE(LoadedPair(out + "/first-vexa.png").failed);
    EXPECT_EQ(LoadedPair(out + "/last-vexa.tif").picture.pic.bitsPerComponent, 16);
    EXPECT_TRUE(ReadBytes(out + "/junk-vexa.jpg").empty());
}

TEST_F(PhotoCommand, KeepsTheAlphaPlane)
{
    const TestPicture alpha = PictureOf(24, 20, 1, 8, [](int x, int, int) { return 9 * x; });
    const std::string photo = Put("a.png", ScenePicture(24, 20, 3, 8, 0), &alpha);
    const std::string out = folder.File("b.png");
    for (const std::string command : {"single", "daylight-up", "tone-map", "smart-contrast"})
    {
        ASSERT_EQ(RunCli({command, "-q", "-o", out, photo}).code, 0) << command;
        ExpectSamePicture(LoadedPair(out).alpha.pic, alpha.pic);
    }
}

TEST_F(PhotoCommand, RefusesCommandLinesThatDoNotGoTogether)
{
    const std::string a = Put("a.png", ScenePicture(20, 16, 3, 8, 0));
    std::filesystem::create_directory(folder.path / "other");
    const std::string same = Put("other/a.png", ScenePicture(20, 16, 3, 8, 0));
    const std::string out = folder.File("o.png"), dir = folder.File("dir");
    const struct
    {
        std::vector<std::string> arguments;
        int code;
        std::string reason;
    } cases[] = {
        {{"tone-map", a}, 2, "either --output OUT or --out-dir DIR"},
        {{"tone-map", "-o", out, "--out-dir", dir, a}, 2, "either --output OUT or --out-dir"},
        {{"tone-map", "-o", out, a, a}, 2, "several pictures need --out-dir"},
        {{"tone-map", "--out-dir", dir, a, same}, 2, "would both become"},
        {{"tone-map", "--contrast", "51", "-o", out, a}, 2, "from 1 to 50"},
        {{"single", "--noise", "some", "-o", out, a}, 2, "none, low, medium or high"},
        {{"smart-contrast", "--lod", "1,2,3", "-o", out, a}, 2, "eight numbers from 0 to 30"},
        {{"smart-contrast", "--lod", "1,2,3,4,5,6,7,8,9", "-o", out, a}, 2, "eight numbers"},
        {{"smart-contrast", "--lod", "1,2,3,4,5,6,7,31", "-o", out, a}, 2, "eight numbers"},
        {{"daylight-up", "--power", "2", "-o", out, a}, 2, "from 3 to 39"},
        {{"series", "double", "--out-dir", dir, a}, 2, "unknown series 'double'"},
        {{"series", "single", "--out-dir", dir, a, a}, 2, "made from one picture"},
        {{"tone-map", "-o", folder.File("o.gif"), a}, 1, "the name must end in"},
    };
    for (const auto& c : cases)
    {
        const Outcome outcome = RunCli(c.arguments);
        EXPECT_EQ(outcome.code, c.code) << outcome.err;
        EXPECT_NE(outcome.err.find(c.reason), std::string::npos) << outcome.err;
        EXPECT_EQ(Lines(outcome.err).size(), 1u) << outcome.err;
    }
    EXPECT_EQ(folder.FileCount(), 2) << "nothing was written";
}

TEST_F(PhotoCommand, StopsWithoutWritingAnything)
{
    const std::string photo = Put("a.png", ScenePicture(40, 32, 3, 8, 0));
    for (const std::string command :
         {"single", "daylight-up", "daylight-down", "tone-map", "smart-contrast"})
    {
        RequestStop();
        EXPECT_EQ(RunCli({command, "-o", folder.File("o.png"), photo}).code, 1) << command;
    }
    RequestStop();
    const Outcome series = RunCli({"series", "single", "--out-dir", folder.File("s"), photo});
    EXPECT_EQ(series.code, 1);
    EXPECT_NE(series.err.find("stopped"), std::string::npos) << series.err;
    EXPECT_TRUE(ReadBytes(folder.File("o.png")).empty());
}

} // namespace
