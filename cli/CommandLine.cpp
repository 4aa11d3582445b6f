#include "cli/CommandLine.h"

#include "cli/ParameterOptions.h"

std::vector<OptionRow> OptionsOf(const CommandRow& command)
{
    std::vector<OptionRow> options;
    for (const OptionList& list : command.options)
    {
        options.insert(options.end(), list.rows, list.rows + list.count);
        if (!list.ofTool)
            continue;
        for (OptionRow option : ParameterOptions(list.tool))
        {
            option.help = list.toolHelp ? list.toolHelp : option.help;
            options.push_back(option);
        }
    }
    return options;
}

bool TakesValue(const OptionRow& row)
{
    return row.parameter ? !ParameterArgument(*row.parameter).empty() : !row.flag;
}

static const OptionRow* FindOption(const std::vector<OptionRow>& options, const std::string& name)
{
    for (const OptionRow& row : options)
        if (name == row.name || (row.letter && name == std::string{'-', row.letter}))
            return &row;
    return nullptr;
}

// Whole numbers of up to twelve digits, all of the text: "12px" and "1e3" are mistakes, where the
// library's functions would see 12 and 1.
bool ParseNumber(const std::string& text, long long* value)
{
    const bool negative = !text.empty() && text[0] == '-';
    const std::string digits = text.substr(negative ? 1 : 0);
    if (digits.empty() || digits.size() > 12 ||
        digits.find_first_not_of("0123456789") != std::string::npos)
        return false;
    *value = 0;
    for (const char digit : digits)
        *value = *value * 10 + (digit - '0');
    if (negative)
        *value = -*value;
    return true;
}

static std::string Takes(const OptionRow& row, const std::string& what, const std::string& value)
{
    return std::string(row.name) + " takes " + what + ", not '" + value + "'";
}

// Whether the value is one of "these|those".
static bool IsChoice(const std::string& choices, const std::string& value)
{
    return value.find('|') == value.npos &&
           ("|" + choices + "|").find("|" + value + "|") != choices.npos;
}

// As words between which one chooses.
static std::string ChoicesText(std::string choices)
{
    for (size_t at = 0; (at = choices.find('|', at)) != choices.npos;)
        choices.replace(at, 1, " or ");
    return choices;
}

// Stores the value of an option. Gives the complaint, empty when there is none.
static std::string StoreValue(CliOptions* options, const OptionRow& row, const std::string& value)
{
    if (row.choices && !IsChoice(row.choices, value))
        return Takes(row, ChoicesText(row.choices), value);
    if (row.text)
    {
        options->*row.text = value;
        return value.empty() ? std::string(row.name) + " needs a value that is not empty" : "";
    }
    if (row.parameter)
        return StoreParameter(&options->numbers, *row.parameter, value)
                   ? ""
                   : Takes(row, ParameterTakes(*row.parameter), value);
    long long number = 0;
    if (!ParseNumber(value, &number) || number < row.low || number > row.high)
        return Takes(row,
                     "a whole number from " + std::to_string(row.low) + " to " +
                         std::to_string(row.high),
                     value);
    options->*row.number = int(number);
    return "";
}

static void SetFlag(CliOptions* options, const OptionRow& row)
{
    if (row.parameter)
        StoreParameter(&options->numbers, *row.parameter, "");
    else
        options->*row.flag = row.setsFlag;
}

// Every complaint points to the help of its command, or to that of the program where there is none.
static ParsedLine Wrong(const CommandRow* command, const std::string& complaint)
{
    ParsedLine line;
    line.command = command;
    line.message = complaint + "; see plenoviz-cli " +
                   (command ? command->name + std::string(" ") : std::string()) + "--help";
    return line;
}

static std::string MissingPart(const CommandRow& command, const CliOptions& options)
{
    for (const OptionRow& row : OptionsOf(command))
        if (row.required && (options.*row.text).empty())
            return std::string(row.name) + " " + row.argument + " is missing";
    if (int(options.inputs.size()) < command.minInputs)
        return "no picture to work on is given";
    return "";
}

// Walks through the arguments of one command.
struct ArgumentWalk
{
    const CommandRow& command;
    std::vector<OptionRow> rows;
    const std::vector<std::string>& arguments;
    size_t at = 1; // the command itself is the first
    CliOptions options = {};
};

// An option with its value, which may be the next argument.
static std::string TakeValue(ArgumentWalk* walk, const OptionRow& row, const std::string* value)
{
    if (!value && walk->at + 1 == walk->arguments.size())
        return std::string(row.name) + " needs a value";
    return StoreValue(&walk->options, row, value ? *value : walk->arguments[++walk->at]);
}

// --name, --name value or --name=value.
static std::string TakeLong(ArgumentWalk* walk, const std::string& argument)
{
    const size_t equals = argument.find('=');
    const OptionRow* row = FindOption(walk->rows, argument.substr(0, equals));
    if (!row)
        return "unknown option '" + argument + "'";
    const std::string value = equals == argument.npos ? "" : argument.substr(equals + 1);
    if (TakesValue(*row))
        return TakeValue(walk, *row, equals == argument.npos ? nullptr : &value);
    if (equals != argument.npos)
        return std::string(row->name) + " takes no value";
    SetFlag(&walk->options, *row);
    return "";
}

// -x, -x value or -xvalue, and several letters behind one dash, of which the last may take a value.
static std::string TakeLetters(ArgumentWalk* walk, const std::string& argument)
{
    for (size_t i = 1; i < argument.size(); i++)
    {
        const OptionRow* row = FindOption(walk->rows, std::string{'-', argument[i]});
        if (!row)
            return "unknown option '" + argument + "'";
        if (TakesValue(*row))
        {
            const std::string value = argument.substr(i + 1);
            return TakeValue(walk, *row, value.empty() ? nullptr : &value);
        }
        SetFlag(&walk->options, *row);
    }
    return "";
}

static std::string TakeArguments(ArgumentWalk* walk)
{
    bool optionsEnded = false;
    for (; walk->at < walk->arguments.size(); walk->at++)
    {
        const std::string& argument = walk->arguments[walk->at];
        std::string complaint;
        if (optionsEnded || argument.size() < 2 || argument[0] != '-')
        {
            if (!*walk->command.arguments)
                complaint = "unexpected argument '" + argument + "'";
            walk->options.inputs.push_back(argument);
        }
        else if (argument == "--")
            optionsEnded = true;
        else
            complaint = argument[1] == '-' ? TakeLong(walk, argument) : TakeLetters(walk, argument);
        if (!complaint.empty())
            return complaint;
    }
    return "";
}

static ParsedLine ParseCommand(const CommandRow& command, const std::vector<std::string>& arguments)
{
    ArgumentWalk walk = {command, OptionsOf(command), arguments};
    for (const OptionRow& row : walk.rows)
        if (row.number)
            walk.options.*row.number = row.byDefault;
    std::string complaint = TakeArguments(&walk);
    if (complaint.empty() && !walk.options.help)
        complaint = MissingPart(command, walk.options);
    if (!complaint.empty())
        return Wrong(&command, complaint);

    ParsedLine line;
    line.command = &command;
    line.action = walk.options.help ? ParsedAction::ShowCommandHelp : ParsedAction::Run;
    line.options = std::move(walk.options);
    return line;
}

ParsedLine ParseCommandLine(const CommandTable& table, const std::vector<std::string>& arguments)
{
    if (arguments.empty())
        return Wrong(nullptr, "no command is given");
    const std::string& first = arguments[0];
    ParsedLine line;
    if (first == "--help" || first == "-h")
    {
        line.action = ParsedAction::ShowHelp;
        return line;
    }
    if (first == "--version")
    {
        line.action = ParsedAction::ShowVersion;
        return line;
    }
    for (int i = 0; i < table.count; i++)
        if (first == table.rows[i].name)
            return ParseCommand(table.rows[i], arguments);
    const char* what =
        first.size() > 1 && first[0] == '-' ? "unknown option '" : "unknown command '";
    return Wrong(nullptr, what + first + "'");
}
