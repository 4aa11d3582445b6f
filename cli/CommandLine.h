#pragma once

#include "tools/Parameters.h"

#include <iosfwd>
#include <string>
#include <vector>

// The command line as data. A command is a row: its name, what it takes, the table of its options
// and the function that does the work. Parsing, help and the messages about wrong usage all come
// from these rows (Commands.cpp). Texts are UTF-8.

constexpr int kExitDone = 0;
constexpr int kExitFailed = 1; // the work could not be done; no output file was touched
constexpr int kExitUsage = 2;  // the command line makes no sense, or names no place for the result

// Everything that an option can set. What a row does not mention keeps these values, and numbers
// take their default from the row.
struct CliOptions
{
    std::vector<std::string> inputs;
    std::string output;
    std::string outDir;
    ToolNumbers numbers = DefaultNumbers();
    int jpegQuality = 95; // for commands that have no such option, too
    int threads = 0;      // 0 = as many as the machine has
    int width = 0, height = 0, frames = 0;
    std::string align = "auto"; // or "off"
    bool crop = true;
    bool report = false;
    bool handHeld = false;
    bool times = false;
    bool quiet = false;
    bool help = false;
};

// Exactly one of flag, number, text and parameter is set.
struct OptionRow
{
    const char* name;     // with both dashes
    char letter;          // -x as well, or 0
    const char* argument; // what its value is called in the help; null for a flag
    bool CliOptions::*flag;
    int CliOptions::*number;
    std::string CliOptions::*text;
    int low, high, byDefault; // numbers only
    bool required;            // texts only
    const char* help;
    const ParameterRow* parameter = nullptr; // whose number it is, with all that it says
    bool setsFlag = true;                    // what the flag becomes
    const char* choices = nullptr;           // of a text that is not free: "auto|off"
};

struct CliStreams
{
    std::ostream& out;
    std::ostream& err;
    bool terminal; // err is one: a line that is rewritten in place may go there
};

// Rows of its own, or those of a tool's numbers.
struct OptionList
{
    const OptionRow* rows;
    int count;
    Tool tool = Tool::ToneMap;
    bool ofTool = false;
    const char* toolHelp = nullptr; // where the tool's own help line does not fit the command
};

struct CommandRow
{
    const char* name;
    const char* arguments; // what follows the options, or "" when nothing may
    int minInputs;         // how many of them there must be
    const char* summary;
    const char* details;   // paragraph of the command's own help, in one line
    OptionList options[6]; // its own first, then those it shares with others; unused ones are empty
    int (*run)(const CliOptions& options, const CliStreams& streams);
};

std::vector<OptionRow> OptionsOf(const CommandRow& command);

bool TakesValue(const OptionRow& row);

struct CommandTable
{
    const CommandRow* rows;
    int count;
};

enum class ParsedAction
{
    Run,
    ShowHelp,        // of the whole program
    ShowCommandHelp, // of `command`
    ShowVersion,
    WrongUsage, // `message` says why
};

struct ParsedLine
{
    ParsedAction action = ParsedAction::WrongUsage;
    const CommandRow* command = nullptr;
    CliOptions options;
    std::string message;
};

// `arguments` are those after the program's name.
ParsedLine ParseCommandLine(const CommandTable& table, const std::vector<std::string>& arguments);

// The whole text as a decimal number; anything else, spaces and a plus sign included, is none.
bool ParseNumber(const std::string& text, long long* value);
