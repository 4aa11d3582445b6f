#include "cli/CommandLine.h"
#include "cli/Progress.h"

#include "fusion/FusionAccumulator.h"

#include "tests/support/TestFiles.h"

#include <FreeImage.h>
#include <gtest/gtest.h>

#include <sstream>

// The commands run in this process, on small pictures in a fresh folder.

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

class InFolder : public testing::Test
{
protected:
    TempFolder folder;

    std::string Put(const std::string& name, int width, int height, int components, int bits,
                    int ev)
    {
        const std::string path = folder.File(name);
        const TestPicture picture = ScenePicture(width, height, components, bits, ev);
        EXPECT_TRUE(Save(picture, path).written);
        return path;
    }
    ~InFolder() override { ForgetStop(); }
};
using Fuse = InFolder;
using SampleSeries = InFolder;

TEST_F(Fuse, WritesWhatTheEngineComputes)
{
    const std::vector<std::string> inputs = {Put("a.png", 40, 30, 3, 8, -2),
                                             Put("b.png", 40, 30, 3, 8, 0),
                                             Put("c.png", 40, 30, 3, 8, 2)};
    const std::string output = folder.File("out.PNG");
    const Outcome outcome =
        RunCli({"fuse", "--exposure", "120", "-o", output, inputs[0], inputs[1], inputs[2]});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, output + ": 40 x 30, 8-bit colour, fused from 3 pictures\n");

    TestPicture expected(40, 30, 3, 8);
    VcFusionAccumulator accumulator;
    ASSERT_FALSE(VcInitAccumulator(&accumulator, expected.pic, 120));
    for (const std::string& input : inputs)
        ASSERT_FALSE(VcAccumulateImage(&accumulator, LoadedPair(input).picture.pic));
    ASSERT_FALSE(VcComposeResult(&expected.pic, accumulator));
    VcFreeAccumulator(&accumulator);
    ExpectSamePicture(LoadedPair(output).picture.pic, expected.pic);

    // The same bytes on one thread, where nothing is read ahead, and over an input.
    const Bytes first = ReadBytes(output);
    EXPECT_EQ(RunCli({"fuse", "-q", "--threads", "1", "--exposure=120", "-o", inputs[1], inputs[0],
                      inputs[1], inputs[2]})
                  .code,
              0);
    EXPECT_EQ(ReadBytes(inputs[1]), first);
    EXPECT_EQ(RunCli({"--version"}).out, "plenoviz-cli " PLENOVIZ_VERSION "\n");
}

TEST_F(Fuse, KeepsDepthProfileAndAlphaOfTheFirst)
{
    TestPicture alpha = PictureOf(16, 12, 1, 16, [](int x, int y, int) { return 4000 * x + y; });
    const TestPicture picture = ScenePicture(16, 12, 3, 16, 0);
    const std::string first = folder.File("first.tif"),
                      second = Put("second.tif", 16, 12, 3, 16, 1);
    ASSERT_TRUE(Save(picture, first, kFormatTiff, "", &alpha).written);

    const std::string output = folder.File("o.tiff");
    ASSERT_EQ(RunCli({"fuse", "-q", "-o", output, first, second}).code, 0);
    const LoadedPair pair(output);
    EXPECT_EQ(pair.picture.pic.bitsPerComponent, 16);
    ExpectSamePicture(pair.alpha.pic, alpha.pic);

    // A format without alpha drops it and says so.
    const TestPicture small = ScenePicture(16, 12, 3, 8, 0);
    const TestPicture smallAlpha = PictureOf(16, 12, 1, 8, [](int x, int, int) { return 10 * x; });
    const std::string png = folder.File("p.png"), jpeg = folder.File("p.jpeg");
    ASSERT_TRUE(Save(small, png, kFormatPng, "", &smallAlpha).written);
    const Outcome outcome = RunCli({"fuse", "-o", jpeg, png});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_NE(outcome.out.find("without the alpha plane"), std::string::npos) << outcome.out;
    EXPECT_EQ(LoadedPair(jpeg).alpha.pic.data, nullptr);

    // Quality reaches the encoder; the picture is large enough to outweigh the headers.
    const std::string large = Put("l.png", 200, 150, 3, 8, 0);
    const std::string coarse = folder.File("c.jpg"), fine = folder.File("f.jpg");
    ASSERT_EQ(RunCli({"fuse", "-q", "--jpeg-quality", "20", "-o", coarse, large}).code, 0);
    ASSERT_EQ(RunCli({"fuse", "-q", "-o", fine, large}).code, 0);
    EXPECT_LT(ReadBytes(coarse).size(), ReadBytes(fine).size() / 2);
}

TEST_F(Fuse, FailsInOneLineAndLeavesTheOutputAlone)
{
    const std::string good = Put("good.png", 20, 16, 3, 8, 0),
                      deep = Put("deep.png", 20, 16, 3, 16, 0);
    const std::string grey = Put("grey.png", 20, 16, 1, 8, 0),
                      wide = Put("wide.png", 21, 16, 3, 8, 0);
    const std::string thin = Put("thin.png", 40, 5, 3, 8, 0);
    const std::string junk = folder.Write("junk.dat", {1, 2, 3, 4});
    const std::string none = folder.File("none.jpg");
    const Bytes old = {'o', 'l', 'd'};
    const std::string jpeg = folder.Write("out.jpg", old), gif = folder.Write("out.gif", old);
    const std::string lost = folder.File("missing/out.jpg");

    struct
    {
        std::string output;
        std::vector<std::string> inputs;
        std::string file, reason;
    } cases[] = {
        {jpeg, {none}, none, "no such file"},
        {jpeg, {good, junk}, junk, "not a known image format"},
        {jpeg, {thin}, thin, "the picture is 40 x 5; fusion needs at least 6 pixels each way"},
        {jpeg,
         {good, wide},
         wide,
         "the picture is 21 x 16, 8-bit colour, but the first one is 20 x 16, 8-bit colour"},
        {jpeg, {good, deep}, deep, "the picture is 20 x 16, 16-bit colour"},
        {jpeg, {good, grey}, grey, "the picture is 20 x 16, 8-bit grey"},
        {jpeg, {deep, deep}, jpeg, "JPEG files cannot hold 16-bit pictures; use .tif or .png"},
        {gif, {good}, gif, "the name must end in"},
        {lost, {good}, lost, "the file cannot be created"},
    };
    const int files = folder.FileCount();
    for (const auto& c : cases)
    {
        std::vector<std::string> arguments = {"fuse", "-o", c.output};
        arguments.insert(arguments.end(), c.inputs.begin(), c.inputs.end());
        const Outcome outcome = RunCli(arguments);
        EXPECT_EQ(outcome.code, 1) << c.reason;
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err.find("plenoviz-cli: " + c.file + ": " + c.reason), 0u) << outcome.err;
        EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome.err;
    }
    EXPECT_EQ(RunCli({"fuse", "-o", jpeg, "--exposure", "0", good}).code, 2);
    RequestStop();
    EXPECT_EQ(RunCli({"fuse", "-o", jpeg, good}).code, 1);

    EXPECT_EQ(ReadBytes(jpeg), old);
    EXPECT_EQ(ReadBytes(gif), old);
    EXPECT_EQ(folder.FileCount(), files);
}

TEST_F(Fuse, ShowsProgressOnATerminalOnly)
{
    const std::string input = Put("a.png", 12, 12, 3, 8, 0), output = folder.File("o.png");
    const std::string shown = RunCli({"fuse", "-o", output, input}, true).err;
    EXPECT_NE(shown.find("\rFusing 1 of 1"), std::string::npos) << shown;
    EXPECT_EQ(shown.find('\n'), std::string::npos);
    EXPECT_EQ(shown.back(), '\r'); // the line is wiped at the end
    EXPECT_EQ(RunCli({"fuse", "-q", "-o", output, input}, true).err, "");
    EXPECT_EQ(RunCli({"fuse", "-o", output, input}, false).err, "");
}

std::string ExposureTimeOf(const std::string& file)
{
    FIBITMAP* bitmap = FreeImage_Load(FIF_JPEG, file.c_str(), FIF_LOAD_NOPIXELS);
    FITAG* tag = nullptr;
    FreeImage_GetMetadata(FIMD_EXIF_EXIF, bitmap, "ExposureTime", &tag);
    const char* text = tag ? FreeImage_TagToString(FIMD_EXIF_EXIF, tag) : nullptr;
    const std::string result = text ? text : "";
    FreeImage_Unload(bitmap);
    return result;
}

TEST_F(SampleSeries, IsWrittenWithExposureTimesAndCanBeFused)
{
    const std::string series = folder.File("new/series");
    const Outcome outcome =
        RunCli({"sample", "--out-dir", series, "--width", "48", "--height", "32", "--frames", "3"});
    ASSERT_EQ(outcome.code, 0) << outcome.err;
    std::vector<std::string> fuse = {"fuse", "-q", "-o", folder.File("o.png")};
    const char* times[] = {"1/256", "1/64", "1/16"};
    for (int i = 0; i < 3; i++)
    {
        const std::string file = series + "/sample_" + std::to_string(i + 1) + ".jpg";
        EXPECT_EQ(ExposureTimeOf(file).find(times[i]), 0u) << ExposureTimeOf(file);
        EXPECT_NE(outcome.out.find("sample_" + std::to_string(i + 1) + ".jpg (" + times[i] + " s)"),
                  std::string::npos)
            << outcome.out;
        fuse.push_back(file);
    }
    EXPECT_EQ(LoadedPair(fuse.back()).picture.pic.width, 48);
    EXPECT_EQ(RunCli(fuse).code, 0);
    // Nothing but the three frames stays in the folder.
    const auto entries = std::filesystem::directory_iterator(std::filesystem::u8path(series));
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 3);
}

TEST_F(SampleSeries, AppearsAsAWholeOrNotAtAll)
{
    const std::vector<std::string> small = {"--width", "16", "--height", "16", "--frames", "3"};
    const auto sample = [&](const std::string& dir)
    {
        std::vector<std::string> arguments = {"sample", "--out-dir", dir};
        arguments.insert(arguments.end(), small.begin(), small.end());
        return RunCli(arguments);
    };
    // A folder stands where the second frame should go.
    std::filesystem::create_directories(std::filesystem::u8path(folder.File("sample_2.jpg")));
    const std::string file = folder.Write("file", {1});
    const int before = folder.FileCount();
    const Outcome blocked = sample(folder.File(""));
    EXPECT_EQ(blocked.code, 1);
    EXPECT_NE(blocked.err.find("sample_2.jpg: something that is no file has this name\n"),
              std::string::npos)
        << blocked.err;

    EXPECT_EQ(sample(file).code, 1);
    EXPECT_EQ(sample(file + "/below").code, 1);
    RequestStop(); // folders that the run made go away again
    EXPECT_EQ(sample(folder.File("x/y/z")).code, 1);
    EXPECT_EQ(folder.FileCount(), before);
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::u8path(folder.File("x"))));
}

} // namespace
