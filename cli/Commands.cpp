#include "cli/CommandLine.h"

#include "picture/ImageFile.h"

#include "fusion/FusionThreads.h"

#include <new>
#include <ostream>

// What every command takes.
static const OptionRow kCommonOptions[] = {
    {"--jpeg-quality", 0, "N", nullptr, &CliOptions::jpegQuality, nullptr, 1, 100, 95, false,
     "quality of JPEG files"},
    {"--threads", 0, "N", nullptr, &CliOptions::threads, nullptr, 0, 1024, 0, false,
     "threads to use, 0 = all processors"},
    {"--quiet", 'q', nullptr, &CliOptions::quiet, nullptr, nullptr, 0, 0, 0, false,
     "print nothing but errors"},
    {"--help", 'h', nullptr, &CliOptions::help, nullptr, nullptr, 0, 0, 0, false,
     "print this help"},
};

static const OptionRow kFuseOptions[] = {
    {"--output", 'o', "OUT", nullptr, nullptr, &CliOptions::output, 0, 0, 0, true,
     "file to write: .jpg .jpeg .png .tif .tiff or .bmp"},
    {"--exposure", 0, "N", nullptr, &CliOptions::exposure, nullptr, 48, 160, 100, false,
     "grey to aim at, more = brighter"},
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
};

template <int N>
static constexpr OptionList List(const OptionRow (&rows)[N])
{
    return {rows, N};
}

static const CommandRow kCommands[] = {
    {"fuse",
     "IN...",
     1,
     "fuse an exposure series into one picture",
     "Blends photographs of one scene, taken with different exposures, into one picture that\n"
     "shows detail in shadows and highlights. All inputs must have the same size, depth and\n"
     "number of components. The first one gives the result its colour profile, its metadata and,\n"
     "where the format has room for it, its alpha plane. 16-bit pictures need TIFF or PNG.",
     {List(kFuseOptions), List(kCommonOptions), {}},
     RunFuse},
    {"sample",
     "",
     0,
     "write an exposure series to try the program with",
     "Renders a room with a bright window and photographs it several times, two stops apart, as\n"
     "JPEG files sample_1.jpg (the darkest), sample_2.jpg and so on.",
     {List(kSampleOptions), List(kCommonOptions), {}},
     RunSample},
};

const CommandTable& Commands()
{
    static const CommandTable table = {kCommands, int(sizeof kCommands / sizeof *kCommands)};
    return table;
}

int Fail(const CliStreams& streams, const std::string& file, const std::string& reason)
{
    streams.err << "plenoviz-cli: " << file << (file.empty() ? "" : ": ") << reason << std::endl;
    return kExitFailed;
}

static int Run(const ParsedLine& line, const CliStreams& streams)
{
    g_jpegQuality = line.options.jpegQuality;
    VcLimitThreads(line.options.threads);
    try
    {
        return line.command->run(line.options, streams);
    }
    catch (const std::bad_alloc&)
    {
        return Fail(streams, "", "not enough memory");
    }
    catch (const std::exception& error)
    {
        return Fail(streams, "", error.what());
    }
}

int RunCommandLine(const std::vector<std::string>& arguments, const CliStreams& streams)
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
