#include "cli/Commands.h"

#include "cli/CommandHelp.h"
#include "cli/Failure.h"
#include "cli/FuseCommand.h"
#include "cli/PhotoCommands.h"
#include "cli/ResultFile.h"
#include "cli/SampleCommand.h"
#include "cli/SeriesCommand.h"
#include "files/ImageFile.h"

#include "base/ParallelRows.h"
#include "base/ThreadProbe.h"
#include "tonemap/RemapRegions.h"

#include <algorithm>
#include <new>
#include <ostream>
#include <thread>

// What every command takes.
static const OptionRow kCommonOptions[] = {
    {"--threads", 0, "N", nullptr, &CliOptions::threads, nullptr, 0, 1024, 0, false,
     "threads to use, 0 = all processors"},
    {"--quiet", 'q', nullptr, &CliOptions::quiet, nullptr, nullptr, 0, 0, 0, false,
     "print nothing but errors"},
    {"--help", 'h', nullptr, &CliOptions::help, nullptr, nullptr, 0, 0, 0, false,
     "print this help"},
};

static const std::string kOutputHelp = "file to write: " + ResultEndings();

static const OptionRow kFuseOptions[] = {
    {"--output", 'o', "OUT", nullptr, nullptr, &CliOptions::output, 0, 0, 0, true,
     kOutputHelp.c_str()},
    {"--align", 0, "MODE", nullptr, nullptr, &CliOptions::align, 0, 0, 0, false,
     "auto brings hand-held pictures into register, off blends all as they lie (default auto)",
     nullptr, true, "auto|off"},
    {"--crop", 0, nullptr, &CliOptions::crop, nullptr, nullptr, 0, 0, 0, false,
     "cut off what not all pictures show when they are brought into register (the default)"},
    {"--no-crop", 0, nullptr, &CliOptions::crop, nullptr, nullptr, 0, 0, 0, false,
     "keep the size of the pictures, with mirrored borders", nullptr, false},
    {"--report", 0, nullptr, &CliOptions::report, nullptr, nullptr, 0, 0, 0, false,
     "say of each picture how it had moved and what was done about it"},
};

// Of commands that write photographs.
static const OptionRow kJpegOption[] = {
    {"--jpeg-quality", 0, "N", nullptr, &CliOptions::jpegQuality, nullptr, 1, 100, 95, false,
     "quality of JPEG files"},
};

static const OptionRow kTimesOption[] = {
    {"--times", 0, nullptr, &CliOptions::times, nullptr, nullptr, 0, 0, 0, false,
     "say how long reading, computing and writing took"},
};

// Where the results of one-photo commands go.
static const OptionRow kPhotoOptions[] = {
    {"--output", 'o', "OUT", nullptr, nullptr, &CliOptions::output, 0, 0, 0, false,
     "the picture to write, for one input; its ending says how"},
    {"--out-dir", 0, "DIR", nullptr, nullptr, &CliOptions::outDir, 0, 0, 0, false,
     "folder for the results, NAME-vexa with the input's ending; made when missing"},
};

static const OptionRow kSeriesOptions[] = {
    {"--out-dir", 0, "DIR", nullptr, nullptr, &CliOptions::outDir, 0, 0, 0, true,
     "folder for the files; made when it is missing"},
};

static const OptionRow kSampleOptions[] = {
    {"--out-dir", 0, "DIR", nullptr, nullptr, &CliOptions::outDir, 0, 0, 0, true,
     "folder for the series; made when it is missing"},
    {"--width", 0, "W", nullptr, &CliOptions::width, nullptr, 16, 10000, 1500, false,
     "width in pixels"},
    {"--height", 0, "H", nullptr, &CliOptions::height, nullptr, 16, 10000, 1000, false,
     "height in pixels"},
    {"--frames", 0, "N", nullptr, &CliOptions::frames, nullptr, 1, 9, 5, false,
     "number of exposures, two stops apart"},
    {"--hand-held", 0, nullptr, &CliOptions::handHeld, nullptr, nullptr, 0, 0, 0, false,
     "move the camera a little between the exposures"},
};

template <int N>
static constexpr OptionList List(const OptionRow (&rows)[N])
{
    return {rows, N};
}

static constexpr OptionList Numbers(Tool tool, const char* help = nullptr)
{
    return {nullptr, 0, tool, true, help};
}

static const CommandRow kCommands[] = {
    {"fuse",
     "IN...",
     1,
     "fuse an exposure series into one picture",
     "Blends photographs of one scene, taken with different exposures, into one picture that shows "
     "detail in shadows and highlights. Pictures taken by hand are brought into register first; "
     "those "
     "from a tripod stay as they are. All inputs must have the same size, depth and number of "
     "components. The first one gives the result its colour profile, its metadata and, where the "
     "format has room for it, its alpha plane. 16-bit pictures need TIFF or PNG.",
     {List(kFuseOptions), Numbers(Tool::ExposureFusion, "grey to aim at, more = brighter"),
      List(kJpegOption), List(kTimesOption), List(kCommonOptions)},
     RunFuse},
    {"single",
     "IN...",
     1,
     "detail in shadows and highlights from one photograph",
     "Makes eleven brighter and darker exposures from each photograph and fuses them. The three "
     "brightest are freed from the noise that brightening shows.",
     {Numbers(Tool::NoisePrompt), Numbers(Tool::ExposureFusion), List(kPhotoOptions),
      List(kJpegOption), List(kTimesOption), List(kCommonOptions)},
     RunSingle},
    {"daylight-up",
     "IN...",
     1,
     "brighten a photograph as if there had been more light",
     "Makes 39 brighter variants of each photograph, orders them by brightness and fuses the first "
     "of them, as many as the power says.",
     {Numbers(Tool::PowerFusion), List(kPhotoOptions), List(kJpegOption), List(kTimesOption),
      List(kCommonOptions)},
     RunDaylightUp},
    {"daylight-down",
     "IN...",
     1,
     "darken a photograph and keep its detail",
     "Makes 39 darker variants of each photograph, orders them and fuses the first of them, as "
     "many as the power says.",
     {Numbers(Tool::PowerFusion), List(kPhotoOptions), List(kJpegOption), List(kTimesOption),
      List(kCommonOptions)},
     RunDaylightDown},
    {"tone-map",
     "IN...",
     1,
     "lift detail and even out light without halos",
     "Filters each photograph with a local Laplacian filter: detail is lifted by a power curve, "
     "edges are compressed or expanded, noise stays as it is.",
     {Numbers(Tool::ToneMap), List(kPhotoOptions), List(kJpegOption), List(kTimesOption),
      List(kCommonOptions)},
     RunToneMap},
    {"smart-contrast",
     "IN...",
     1,
     "lift or damp detail of each size",
     "Takes each photograph apart into eight levels of detail and puts it together with a gain for "
     "each of them.",
     {Numbers(Tool::SmartContrast), List(kPhotoOptions), List(kJpegOption), List(kTimesOption),
      List(kCommonOptions)},
     RunSmartContrast},
    {"series",
     "single|daylight-up|daylight-down IN",
     2,
     "write the exposures that the other commands fuse",
     "Writes the exposures made from one photograph as TIFF files and prints their names, one a "
     "line, in the order in which they are fused.",
     {List(kSeriesOptions), Numbers(Tool::NoisePrompt), List(kCommonOptions)},
     RunSeries},
    {"sample",
     "",
     0,
     "write an exposure series to try the program with",
     "Renders a room with a bright window and photographs it several times, two stops apart, as "
     "JPEG files sample_1.jpg (the darkest), sample_2.jpg and so on.",
     {List(kSampleOptions), List(kJpegOption), List(kCommonOptions)},
     RunSample},
};

const CommandTable& Commands()
{
    static const CommandTable table = {kCommands, int(sizeof kCommands / sizeof *kCommands)};
    return table;
}

// As many as asked for, fewer where the system does not let them start. Loops are split by two
// libraries, which both keep their threads.
static int UsableThreads(int asked)
{
    const int wanted = asked > 0 ? asked : int(std::thread::hardware_concurrency());
    const int tried = 2 * std::clamp(wanted, 1, 64);
    const int started = wanted == 1 ? tried : ThreadsThatStart(tried);
    return started < tried ? std::max(1, started / 2) : asked;
}

static int Run(const ParsedLine& line, const CliStreams& streams)
{
    CliOptions options = line.options;
    options.threads = UsableThreads(options.threads);
    g_jpegQuality = options.jpegQuality;
    VcLimitThreads(options.threads);
    LimitRemapThreads(options.threads);
    return line.command->run(options, streams);
}

static int ParseAndRun(const std::vector<std::string>& arguments, const CliStreams& streams)
{
    const ParsedLine line = ParseCommandLine(Commands(), arguments);
    switch (line.action)
    {
    case ParsedAction::Run: return Run(line, streams);
    case ParsedAction::ShowHelp: streams.out << ProgramHelp(Commands()); return kExitDone;
    case ParsedAction::ShowCommandHelp: streams.out << CommandHelp(*line.command); return kExitDone;
    case ParsedAction::ShowVersion:
        streams.out << "plenoviz-cli " PLENOVIZ_VERSION "\n";
        return kExitDone;
    case ParsedAction::WrongUsage: break;
    }
    Fail(streams, "", line.message);
    return kExitUsage;
}

static int TryCommandLine(const std::vector<std::string>& arguments, const CliStreams& streams)
{
    try
    {
        return ParseAndRun(arguments, streams);
    }
    catch (const std::bad_alloc&) // no text is put together here: that would take memory as well
    {
        streams.err << "plenoviz-cli: not enough memory" << std::endl;
    }
    catch (const std::exception& error)
    {
        streams.err << "plenoviz-cli: " << error.what() << std::endl;
    }
    return kExitFailed;
}

int RunCommandLine(const std::vector<std::string>& arguments, const CliStreams& streams)
{
    const int code = TryCommandLine(arguments, streams);
    streams.out.flush();
    if (streams.out || code != kExitDone)
        return code;
    streams.err << "plenoviz-cli: the standard output cannot be written" << std::endl;
    return kExitFailed;
}
