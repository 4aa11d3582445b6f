#include "cli/CommandLine.h"
#include "cli/Progress.h"

#include "multiscale/ToneMap.h"

#include "tests/support/TestFiles.h"

#include <gtest/gtest.h>

#include <sstream>

// The commands on single photographs run in this process, on small pictures in a fresh folder.

namespace
{

struct Outcome
{
    int code;
    std::string out, err;
};

Outcome RunCli(const std::vector<std::string>& arguments, bool terminal = false)
{
    std::ostringstream out, err;
    const int code = RunCommandLine(arguments, {out, err, terminal});
    return {code, out.str(), err.str()};
}

std::vector<std::string> Lines(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

class PhotoCommand : public testing::Test
{
protected:
    TempFolder folder;

    std::string Put(const std::string& name, const TestPicture& picture)
    {
        EXPECT_TRUE(Save(picture, folder.File(name)).written);
        return folder.File(name);
    }
    ~PhotoCommand() override { ForgetStop(); }
};

TEST_F(PhotoCommand, SingleEqualsItsSeriesFused)
{
    const std::string photo = Put("photo.png", ScenePicture(70, 52, 3, 16, 0));
    const std::string direct = folder.File("direct.png"), fused = folder.File("fused.png");
    ASSERT_EQ(RunCli({"single", "-q", "--noise", "medium", "-o", direct, photo}).code, 0);

    const Outcome series = RunCli(
        {"series", "single", "--noise", "medium", "--out-dir", folder.File("series"), photo});
    ASSERT_EQ(series.code, 0) << series.err;
    const std::vector<std::string> names = Lines(series.out);
    ASSERT_EQ(names.size(), 11u);
    EXPECT_EQ(names.front(), "file_000.tif");
    EXPECT_EQ(names.back(), "file_010.tif");
    std::vector<std::string> fuse = {"fuse", "-q", "-o", fused};
    for (const std::string& name : names)
        fuse.push_back(folder.File("series/" + name));
    ASSERT_EQ(RunCli(fuse).code, 0);
    ExpectSamePicture(LoadedPair(direct).picture.pic, LoadedPair(fused).picture.pic);
    // The sixth exposure is the photograph itself.
    ExpectSamePicture(LoadedPair(folder.File("series/file_005.tif")).picture.pic,
                      LoadedPair(photo).picture.pic);
}

TEST_F(PhotoCommand, DaylightEqualsTheFirstOfItsSeriesFusedAtTheMiddle)
{
    const std::string photo = Put("photo.png", ScenePicture(48, 40, 3, 8, 0));
    for (const std::string command : {"daylight-up", "daylight-down"})
    {
        const std::string direct = folder.File("direct.png"), fused = folder.File("fused.png");
        ASSERT_EQ(RunCli({command, "-q", "--power", "7", "-o", direct, photo}).code, 0);
        const Outcome series =
            RunCli({"series", command, "--out-dir", folder.File(command), photo});
        ASSERT_EQ(series.code, 0) << series.err;
        const std::vector<std::string> names = Lines(series.out);
        ASSERT_EQ(names.size(), 39u);
        std::vector<std::string> fuse = {"fuse", "-q", "--exposure", "128", "-o", fused};
        for (size_t i = 0; i < 7; ++i)
            fuse.push_back(folder.File(command + "/" + names[i]));
        ASSERT_EQ(RunCli(fuse).code, 0);
        ExpectSamePicture(LoadedPair(direct).picture.pic, LoadedPair(fused).picture.pic);
    }
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
    ASSERT_EQ(
        RunCli({"smart-contrast", "-q", "--lod", "30,0,10,10,10,10,10,10", "-o", out, photo}).code,
        0);
    const LoadedPair changed(out);
    int different = 0;
    for (int x = 0; x < 64; ++x)
        different += changed.picture.At(x, 20, 1) != scene.At(x, 20, 1);
    EXPECT_GT(different, 20);
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
    const TestPicture scene = ScenePicture(24, 20, 3, 8, 0);
    const TestPicture alpha = PictureOf(24, 20, 1, 8, [](int x, int, int) { return 9 * x; });
    const std::string photo = folder.File("a.png"), out = folder.File("b.png");
    ASSERT_TRUE(Save(scene, photo, kFormatPng, "", &alpha).written);
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
