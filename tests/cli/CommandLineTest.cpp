#include "cli/CommandLine.h"

#include <gtest/gtest.h>

#include <set>

// What the words of a command line come to, or what is said about them.

namespace
{

struct LineCase
{
    const char* name;
    std::vector<std::string> arguments;
    std::string expected; // see Summary
};

// A parsed line in one text: what happens, and whatever differs from the defaults of the command.
std::string Summary(const ParsedLine& line)
{
    switch (line.action)
    {
    case ParsedAction::ShowHelp: return "help";
    case ParsedAction::ShowCommandHelp: return std::string("help of ") + line.command->name;
    case ParsedAction::ShowVersion: return "version";
    case ParsedAction::WrongUsage: return line.message;
    case ParsedAction::Run: break;
    }
    const CliOptions& o = line.options;
    std::string text = line.command->name;
    const auto add = [&](const char* name, const std::string& value)
    { text += std::string(" ") + name + "=" + value; };
    if (!o.output.empty())
        add("output", o.output);
    if (!o.outDir.empty())
        add("dir", o.outDir);
    if (o.exposure != 100 && o.exposure != 0)
        add("exposure", std::to_string(o.exposure));
    if (o.jpegQuality != 95)
        add("quality", std::to_string(o.jpegQuality));
    if (o.threads != 0)
        add("threads", std::to_string(o.threads));
    if (o.width != 0 && (o.width != 1500 || o.height != 1000 || o.frames != 5))
        add("size", std::to_string(o.width) + "x" + std::to_string(o.height) + "x" +
                        std::to_string(o.frames));
    if (o.quiet)
        text += " quiet";
    for (const std::string& input : o.inputs)
        text += " <" + input + ">";
    return text;
}

const std::string kFuseHelp = "; see plenoviz-cli fuse --help";
const std::string kSampleHelp = "; see plenoviz-cli sample --help";

const LineCase kLines[] = {
    {"Plain", {"fuse", "-o", "out.png", "a.jpg", "b.jpg"}, "fuse output=out.png <a.jpg> <b.jpg>"},
    {"OptionsAnywhere",
     {"fuse", "a.jpg", "--exposure", "48", "-q", "b.jpg", "--output", "o.tif"},
     "fuse output=o.tif exposure=48 quiet <a.jpg> <b.jpg>"},
    {"EqualsSign",
     {"fuse", "--exposure=160", "--output=a=b.jpg", "--threads=2", "--jpeg-quality=1", "x"},
     "fuse output=a=b.jpg exposure=160 quality=1 threads=2 <x>"},
    {"DashesEndOptions",
     {"fuse", "-o", "o.jpg", "--", "--exposure", "-o", "--"},
     "fuse output=o.jpg <--exposure> <-o> <-->"},
    {"LoneDashIsAName", {"fuse", "-o", "o.jpg", "-"}, "fuse output=o.jpg <->"},
    {"TheLastOneCounts", {"fuse", "-o", "a.jpg", "-o", "b.jpg", "i"}, "fuse output=b.jpg <i>"},
    {"Sample",
     {"sample", "--out-dir", "d", "--width", "60", "--height=40", "--frames", "9"},
     "sample dir=d size=60x40x9"},
    {"Help", {"--help"}, "help"},
    {"Version", {"--version"}, "version"},
    {"HelpOfFuse", {"fuse", "--help"}, "help of fuse"},
    {"HelpBeatsWhatIsMissing", {"sample", "-h"}, "help of sample"},

    {"Nothing", {}, "no command is given; see plenoviz-cli --help"},
    {"NoSuchCommand", {"fusion"}, "unknown command 'fusion'; see plenoviz-cli --help"},
    {"OptionBeforeCommand", {"-q", "fuse"}, "unknown option '-q'; see plenoviz-cli --help"},
    {"NoOutput", {"fuse", "a.jpg"}, "--output OUT is missing" + kFuseHelp},
    {"EmptyOutput",
     {"fuse", "-o", "", "a.jpg"},
     "--output needs a value that is not empty" + kFuseHelp},
    {"NoInput", {"fuse", "-o", "o.jpg"}, "no picture to work on is given" + kFuseHelp},
    {"UnknownOption", {"fuse", "--expose", "5"}, "unknown option '--expose'" + kFuseHelp},
    {"UnknownLetter", {"fuse", "-x"}, "unknown option '-x'" + kFuseHelp},
    {"OptionOfAnother", {"fuse", "--frames", "3"}, "unknown option '--frames'" + kFuseHelp},
    {"ValueMissing", {"fuse", "a", "--exposure"}, "--exposure needs a value" + kFuseHelp},
    {"FlagWithValue", {"fuse", "--quiet=1"}, "--quiet takes no value" + kFuseHelp},
    {"InputWhereNoneGoes",
     {"sample", "--out-dir", "d", "extra"},
     "unexpected argument 'extra'" + kSampleHelp},
};

TEST(CommandLine, ComesToWhatTheTableSays)
{
    for (const LineCase& line : kLines)
        EXPECT_EQ(Summary(ParseCommandLine(Commands(), line.arguments)), line.expected)
            << line.name;
}

TEST(Numbers, AreTakenWholeAndInRangeOnly)
{
    for (const char* bad : {"47", "161", "", " 100", "100 ", "1e2", "100.0", "0x64", "+100", "-100",
                            "99999999999", "9999999999999999999999", "one"})
    {
        const ParsedLine line =
            ParseCommandLine(Commands(), {"fuse", "-o", "o.jpg", "--exposure", bad, "i"});
        EXPECT_EQ(Summary(line),
                  std::string("--exposure takes a whole number from 48 to 160, not '") + bad + "'" +
                      kFuseHelp);
    }
}

TEST(CommandTable, HasConsistentRows)
{
    for (int i = 0; i < Commands().count; i++)
    {
        const CommandRow& command = Commands().rows[i];
        std::set<std::string> names;
        for (const OptionRow* row : OptionsOf(command))
        {
            EXPECT_EQ((row->flag != nullptr) + (row->number != nullptr) + (row->text != nullptr) +
                          (row->parse != nullptr),
                      1)
                << row->name;
            EXPECT_EQ(row->argument == nullptr, row->flag != nullptr) << row->name;
            EXPECT_TRUE(!row->required || row->text) << row->name;
            EXPECT_TRUE(!row->number || (row->low <= row->byDefault && row->byDefault <= row->high))
                << row->name;
            EXPECT_TRUE(names.insert(row->name).second) << row->name;
            EXPECT_TRUE(!row->letter || names.insert(std::string(1, row->letter)).second)
                << row->name;
            EXPECT_NE(CommandHelp(command).find(row->name), std::string::npos);
        }
        EXPECT_NE(ProgramHelp(Commands()).find(command.summary), std::string::npos);
    }
}

} // namespace
