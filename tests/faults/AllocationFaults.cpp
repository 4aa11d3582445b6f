#include "base/ParallelRows.h"
#include "cli/Commands.h"
#include "contrast/LevelsOfDetail.h"
#include "fusion/FusionAccumulator.h"
#include "pipeline/FusionJob.h"
#include "series/DaylightSeries.h"
#include "series/ExposureSeries.h"
#include "series/SeriesRun.h"
#include "tests/support/TestFiles.h"
#include "tonemap/RemapRegions.h"
#include "tonemap/ToneMap.h"
#include "tools/Parameters.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <new>
#include <sstream>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

// Does every kind of work again and again, and lets one allocation after the other fail: first that
// one alone, then with the next, since large ones are asked for twice, then with all that follow.
// Each time the work must say that it failed, or come out as if nothing had been; sources stay as
// they are, files are the old or the new ones, and nothing leaks (with the address sanitizer). The
// linker puts the functions below in the place of those that our code calls. The libraries keep
// their own: FreeImage follows null pointers when it gets no memory for a few bytes of metadata,
// and nobody but itself could mend that.

extern "C" void* __real_malloc(size_t size);
extern "C" void* __real_calloc(size_t count, size_t size);
extern "C" void* __wrap_malloc(size_t size);
extern "C" void* __wrap_calloc(size_t count, size_t size);
extern "C" void* __real__Znwm(size_t size); // operator new
extern "C" void* __wrap__Znwm(size_t size);

static std::atomic<bool> g_armed{false};
static std::atomic<long> g_calls{0}, g_failFrom{0}, g_failTo{0}; // [from, to), from 1; 0 = never

static bool FailsNow()
{
    if (!g_armed)
        return false;
    const long call = ++g_calls;
    return call >= g_failFrom && call < g_failTo;
}

// Around what is tried, so that the trial itself has all the memory it wants.
struct Armed
{
    Armed() { g_armed = true; }
    ~Armed() { g_armed = false; }
};

template <typename Work>
static auto Try(Work work)
{
    const Armed armed;
    return work();
}

void* __wrap_malloc(size_t size)
{
    return FailsNow() ? nullptr : __real_malloc(size);
}

void* __wrap_calloc(size_t count, size_t size)
{
    return FailsNow() ? nullptr : __real_calloc(count, size);
}

void* __wrap__Znwm(size_t size)
{
    if (FailsNow())
        throw std::bad_alloc();
    return __real__Znwm(size);
}

static TestPicture* g_colour; // 8 bits
static TestPicture* g_grey;   // 16 bits
static TestPicture* g_small;  // for what takes long
static TestPicture* g_large;
static TempFolder* g_folder;

// What a scenario leaves: its result as one number, and whether it said that it failed.
struct Ending
{
    bool failed;
    uint64_t hash;
};

static Ending Of(bool failed, const TestPicture& result)
{
    return {failed, failed ? 0 : HashOf(result)};
}

static Ending FusePictures(const SBxPicBuf& picture)
{
    TestPicture result = TestPicture::Like(picture);
    const bool failed = Try(
        [&]
        {
            VcFusionAccumulator sums = {}, more = {};
            bool stop = VcInitAccumulator(&sums, picture, 100) ||
                        VcAccumulateImage(&sums, picture) ||
                        VcInitAccumulator(&more, picture, 100) || VcAccumulateImage(&more, picture);
            if (!stop)
                VcMergeAccumulator(&sums, more);
            stop = stop || VcComposeResult(result.Record(), sums);
            VcFreeAccumulator(&sums);
            VcFreeAccumulator(&more);
            return stop;
        });
    return Of(failed, result);
}

static Ending FuseFiles(bool whole)
{
    FusionSources sources;
    std::vector<std::string> paths;
    for (int i = 0; i < 3; ++i) // without one of them the result is another
        for (const char* name : {"source.png", "dark.png", "light.png"})
            paths.push_back(g_folder->File(name));
    OpenFusionSources(&sources, paths, *g_colour, 1 << 24);
    TestPicture result = TestPicture::Like(*g_colour);
    const FusionTask task = {{0, 0, (*g_colour)->width, (*g_colour)->height}, 9, 100};
    const Outcome outcome = Try(
        [&]
        {
            return whole ? FuseWhole(result.Record(), &sources, task)
                         : FuseRegion(result.Record(), &sources, task, nullptr);
        });
    // Those that are left out are named to the user; a lack of memory is not the fault of a file.
    const bool blamed = std::any_of(sources.problems.begin(), sources.problems.end(),
                                    [](SourceProblem p) { return p != SourceProblem::None; });
    Ending made = Of(outcome != Outcome::Done, result);
    made.hash += blamed ? 1 : 0; // neither nothing nor the right result
    return made;
}

static Ending MakeSeries()
{
    uint64_t hash = 0;
    const SeriesSink sink = [&](int, const SBxPicBuf& picture, const char*)
    {
        hash = hash * 31 + HashOf(picture);
        return Outcome::Done;
    };
    SeriesControl control;
    control.denoiseThreads = 1;
    const bool failed =
        Try([&] { return MakeExposureSeries(*g_small, 3, sink, control) < kExposures; });
    return {failed, failed ? 0 : hash};
}

static Ending MakeVariants()
{
    uint64_t hash = 0;
    const SeriesSink sink = [&](int, const SBxPicBuf& picture, const char*)
    {
        hash = hash * 31 + HashOf(picture);
        return Outcome::Done;
    };
    const bool failed = Try(
        [&]
        {
            return MakeDaylightSeries(*g_small, DaylightMode::Down, sink, {}).size() <
                   size_t(kDaylightVariants);
        });
    return {failed, failed ? 0 : hash};
}

static Ending WriteSeriesFiles()
{
    const TempFolder folder;
    SeriesRun run;
    run.source = *g_small;
    run.noiseLevel = 3;
    run.folder = folder.File("");
    run.control.denoiseThreads = 1;
    Try([&] { MakeSeriesFiles(&run); });
    // A file that is missing is found by whoever reads it.
    const int files = int(run.files.size());
    const bool failed = files == 0 || (files == kExposures && folder.FileCount() < kExposures);
    return {failed, failed ? 0 : run.files.size()};
}

static Ending ToneMapColours()
{
    TestPicture result = TestPicture::Like(*g_small);
    const ToneMapParams p = ToneMapParamsOf(DefaultNumbers().toneMap);
    const Outcome outcome =
        Try([&] { return ToneMapPicture(result.Record(), *g_small, kToneMapLevels, p); });
    return Of(outcome != Outcome::Done, result);
}

static Ending ContrastColours()
{
    const int lod[kDetailLevels] = {20, 15, 10, 5, 10, 10, 10, 10};
    TestPicture result = TestPicture::Like(*g_colour);
    const Outcome outcome =
        Try([&] { return SmartContrastPicture(result.Record(), *g_colour, lod, {}); });
    return Of(outcome != Outcome::Done, result);
}

static Ending LoadFile(const char* name)
{
    TestPicture picture, alpha;
    const std::string path = g_folder->File(name);
    const bool failed =
        Try([&] { return LoadPicturePair(path.c_str(), picture.Record(), alpha.Record()); });
    return Of(failed, picture);
}

static const std::string kOldFile = "what stood here before";

// A failure must have left the old file.
static Ending OverFile(const std::string& path, bool failed)
{
    const Bytes bytes = ReadBytes(path);
    const std::string now(bytes.begin(), bytes.end());
    return {failed, failed && now == kOldFile ? 0 : uint64_t(std::hash<std::string>()(now))};
}

static Ending SaveFile(FormatId format)
{
    const std::string target = g_folder->File("target"), source = g_folder->File("source.jpg");
    const TestPicture none;
    SaveReport report;
    try
    {
        Try(
            [&] {
                return SavePicturePair(*g_colour, none, target.c_str(), source.c_str(), format,
                                       &report);
            });
    }
    catch (const UnsupportedImageFormat&) // both are failures that were told
    {
    }
    catch (const ImageReadError&)
    {
    }
    return OverFile(target, !report.written);
}

static Ending RunCommand(std::vector<std::string> arguments)
{
    const std::string target = g_folder->File("target.png");
    arguments.insert(arguments.end(),
                     {"-q", "--threads", "1", "-o", target, g_folder->File("small.jpg")});
    std::ostringstream out, err;
    const int code = Try([&] { return RunCommandLine(arguments, {out, err, false}); });
    const bool told = code == kExitDone || err.str().find("plenoviz-cli: ") == 0;
    return OverFile(told ? target : "", code != kExitDone);
}

struct Scenario
{
    const char* name;
    std::function<Ending()> run;
};

static const Scenario kScenarios[] = {
    {"fuse colour", [] { return FusePictures(*g_colour); }},
    {"fuse grey", [] { return FusePictures(*g_grey); }},
    {"fuse large", [] { return FusePictures(*g_large); }}, // blocks that are kept
    {"fuse files", [] { return FuseFiles(true); }},
    {"fuse files on threads", [] { return FuseFiles(false); }},
    {"exposure series", MakeSeries},
    {"daylight series", MakeVariants},
    {"series files", WriteSeriesFiles},
    {"tone map", ToneMapColours},
    {"smart contrast", ContrastColours},
    {"load bmp", [] { return LoadFile("source.bmp"); }},
    {"load jpeg", [] { return LoadFile("source.jpg"); }},
    {"load png", [] { return LoadFile("source.png"); }},
    {"load tiff", [] { return LoadFile("source.tif"); }},
    {"save bmp", [] { return SaveFile(kFormatBmp); }},
    {"save jpeg", [] { return SaveFile(kFormatJpeg); }},
    {"save png", [] { return SaveFile(kFormatPng); }},
    {"save tiff", [] { return SaveFile(kFormatTiff); }},
    {"command fuse", [] { return RunCommand({"fuse"}); }},
    {"command single", [] { return RunCommand({"single"}); }},
    {"command daylight-up",
     [] {
         return RunCommand({"daylight-up", "--power", "3"});
     }},
    {"command smart-contrast", [] { return RunCommand({"smart-contrast"}); }},
};

static void ResetTargets()
{
    const Bytes old(kOldFile.begin(), kOldFile.end());
    g_folder->Write("target", old);
    g_folder->Write("target.png", old);
}

static int g_complaints = 0;

static void Complain(const char* scenario, long point, const char* mode, const char* text)
{
    if (++g_complaints <= 40)
        std::printf("  %s, call %ld%s: %s\n", scenario, point, mode, text);
}

// One run with calls [from, to) failing. False when no call was reached that fails.
static bool RunPoint(const Scenario& scenario, const Ending& good, long from, long to)
{
    const char* mode = to == from + 1 ? "" : to == from + 2 ? " and the next" : " and all after it";
    const int files = g_folder->FileCount();
    const uint64_t before = HashOf(*g_colour) ^ HashOf(*g_grey);
    ResetTargets();
    g_calls = 0;
    g_failFrom = from;
    g_failTo = to;
    Ending outcome = {true, 0};
    try
    {
        outcome = scenario.run();
    }
    catch (const std::exception& error)
    {
        g_failFrom = g_failTo = 0;
        Complain(scenario.name, from, mode, error.what());
    }
    g_failFrom = g_failTo = 0;
    const bool reached = g_calls >= from;
    if (outcome.hash != (outcome.failed ? 0 : good.hash))
        Complain(scenario.name, from, mode, outcome.failed ? "half a result" : "another result");
    if (!reached && outcome.failed)
        Complain(scenario.name, from, mode, "failed without a fault");
    if ((HashOf(*g_colour) ^ HashOf(*g_grey)) != before)
        Complain(scenario.name, from, mode, "the source has changed");
    if (g_folder->FileCount() != files)
        Complain(scenario.name, from, mode, "files were left behind");
    return reached;
}

int main(int argc, char** argv)
{
    TempFolder folder;
    TestPicture colour = ScenePicture(72, 48, 3, 8, 0), grey = ScenePicture(40, 30, 1, 16, 0);
    TestPicture large = ScenePicture(640, 420, 1, 8, 0), small = ScenePicture(16, 12, 3, 8, 0);
    g_folder = &folder;
    g_colour = &colour;
    g_grey = &grey;
    g_large = &large;
    g_small = &small;
    Save(small, folder.File("small.jpg"));
    Save(ScenePicture(72, 48, 3, 8, -2), folder.File("dark.png"));
    Save(ScenePicture(72, 48, 3, 8, 2), folder.File("light.png"));
    for (const char* name : {"source.bmp", "source.jpg", "source.png", "source.tif"})
        Save(colour, folder.File(name));
    ResetTargets();
    VcLimitThreads(1);
    LimitRemapThreads(1);
    long points = 0;
    for (const Scenario& scenario : kScenarios)
    {
        if (argc > 1 && std::strcmp(argv[1], scenario.name) != 0)
            continue;
        ResetTargets();
        scenario.run(); // what is made once and kept
        const Ending good = scenario.run();
        if (good.failed)
            Complain(scenario.name, 0, "", "fails by itself");
        long point = 1;
        for (; RunPoint(scenario, good, point, point + 1); ++point)
            for (const long many : {2L, 1000000000L})
                RunPoint(scenario, good, point, point + many);
#if defined(__SANITIZE_ADDRESS__)
        if (__lsan_do_recoverable_leak_check())
            Complain(scenario.name, point, "", "memory has leaked");
#endif
        std::printf("%-24s %5ld allocations\n", scenario.name, point - 1);
        std::fflush(stdout);
        points += 3 * (point - 1);
    }
    std::printf("%ld faults, %d complaints\n", points, g_complaints);
    return g_complaints == 0 ? 0 : 1;
}
