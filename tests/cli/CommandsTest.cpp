#include "tests/cli/CliRun.h"

#include "fusion/FusionAccumulator.h"

#include <FreeImage.h>

namespace
{

using Fuse = InFolder;
using SampleSeries = InFolder;

TEST_F(Fuse, WritesWhatTheEngineComputes)
{
    const std::vector<std::string> inputs = {Put("a.png", ScenePicture(40, 30, 3, 8, -2)),
                                             Put("b.png", ScenePicture(40, 30, 3, 8, 0)),
                                             Put("c.png", ScenePicture(40, 30, 3, 8, 2))};
    const std::string output = folder.File("out.PNG");
    const Outcome outcome = RunCli(Joined({"fuse", "--exposure", "120", "-o", output}, inputs));
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
    const std::vector<std::string> single = {"fuse",           "-q", "--threads", "1",
                                             "--exposure=120", "-o", inputs[1]};
    EXPECT_EQ(RunCli(Joined(single, inputs)).code, 0);
    EXPECT_EQ(ReadBytes(inputs[1]), first);
    EXPECT_EQ(RunCli({"--version"}).out, "plenoviz-cli " PLENOVIZ_VERSION "\n");
}

TEST_F(Fuse, KeepsDepthAndAlphaOfTheFirst)
{
    const TestPicture alpha =
        PictureOf(16, 12, 1, 16, [](int x, int y, int) { return 4000 * x + y; });
    const std::string first = Put("first.tif", ScenePicture(16, 12, 3, 16, 0), &alpha),
                      second = Put("second.tif", ScenePicture(16, 12, 3, 16, 1)),
                      output = folder.File("o.tiff");
    ASSERT_EQ(RunCli({"fuse", "-q", "-o", output, first, second}).code, 0);
    const LoadedPair pair(output);
    EXPECT_EQ(pair.picture.pic.bitsPerComponent, 16);
    ExpectSamePicture(pair.alpha.pic, alpha.pic);

    // A format without alpha drops it and says so. Quality reaches the encoder; the picture is
    // large enough to outweigh the headers.
    const TestPicture veil = FlatPicture(200, 150, 8, {99});
    const std::string png = Put("p.png", ScenePicture(200, 150, 3, 8, 0), &veil);
    const std::string coarse = folder.File("c.jpg"), fine = folder.File("f.jpeg");
    EXPECT_NE(RunCli({"fuse", "-o", fine, png}).out.find("without the alpha plane"),
              std::string::npos);
    EXPECT_EQ(LoadedPair(fine).alpha.pic.data, nullptr);
    ASSERT_EQ(RunCli({"fuse", "-q", "--jpeg-quality", "20", "-o", coarse, png}).code, 0);
    EXPECT_LT(ReadBytes(coarse).size(), ReadBytes(fine).size() / 2);
}

TEST_F(Fuse, FailsInOneLineAndLeavesTheOutputAlone)
{
    const std::string good = Put("good.png", ScenePicture(20, 16, 3, 8, 0)),
                      deep = Put("deep.png", ScenePicture(20, 16, 3, 16, 0)),
                      grey = Put("grey.png", ScenePicture(20, 16, 1, 8, 0)),
                      wide = Put("wide.png", ScenePicture(21, 16, 3, 8, 0)),
                      thin = Put("thin.png", ScenePicture(40, 5, 3, 8, 0));
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
        const Outcome outcome = RunCli(Joined({"fuse", "-o", c.output}, c.inputs));
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
    const std::string input = Put("a.png", ScenePicture(12, 12, 3, 8, 0)),
                      output = folder.File("o.png");
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
    const auto sample = [](const std::string& dir)
    {
        return RunCli(
            {"sample", "--out-dir", dir, "--width", "16", "--height", "16", "--frames", "3"});
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
