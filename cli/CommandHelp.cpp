#include "cli/CommandHelp.h"

#include "cli/ParameterOptions.h"

#include <algorithm>

// Width of a terminal that nobody has widened, and the columns in which the texts of commands and
// of options begin.
constexpr size_t kLineWidth = 80;
constexpr size_t kCommandColumn = 18;
constexpr size_t kOptionColumn = 29;

// Adds the words of a paragraph to a text that stands at that column; further lines begin there,
// too.
static void AddWords(std::string* text, size_t column, const std::string& words)
{
    size_t at = column;
    for (size_t start = 0; start < words.size();)
    {
        const size_t end = std::min(words.find(' ', start), words.size());
        if (at > column && at + 1 + (end - start) > kLineWidth)
        {
            *text += "\n" + std::string(column, ' ');
            at = column;
        }
        else if (at > column)
        {
            *text += ' ';
            at++;
        }
        text->append(words, start, end - start);
        at += end - start;
        start = end + 1;
    }
    *text += "\n";
}

// What is too long for its column has a line of its own.
static void AddRow(std::string* text, size_t column, const std::string& label,
                   const std::string& words)
{
    *text += "  " + label;
    if (label.size() + 3 > column)
        *text += "\n" + std::string(column, ' ');
    else
        text->append(column - 2 - label.size(), ' ');
    AddWords(text, column, words);
}

static std::string OptionLabel(const OptionRow& row)
{
    std::string label = row.letter ? std::string{'-', row.letter} + ", " : "    ";
    label += row.name;
    if (TakesValue(row))
        label += " " + (row.parameter ? ParameterArgument(*row.parameter) : row.argument);
    return label;
}

static std::string OptionText(const OptionRow& row)
{
    std::string text = row.help;
    if (row.parameter)
        text += ParameterRangeHelp(*row.parameter);
    if (row.number)
        text += " (" + std::to_string(row.low) + " to " + std::to_string(row.high) + ", default " +
                std::to_string(row.byDefault) + ")";
    return text;
}

std::string CommandHelp(const CommandRow& command)
{
    std::string text = "Usage: plenoviz-cli " + std::string(command.name) + " [options]";
    for (const OptionRow& row : OptionsOf(command))
        if (row.required)
            text += std::string(" ") + row.name + " " + row.argument;
    text += (*command.arguments ? " " : "") + std::string(command.arguments) + "\n\n";
    AddWords(&text, 0, command.details);
    text += "\nOptions:\n";
    for (const OptionRow& row : OptionsOf(command))
        AddRow(&text, kOptionColumn, OptionLabel(row), OptionText(row));
    if (*command.arguments)
        text += "\nAfter -- everything is a file name, even if it begins with a dash.\n";
    return text;
}

std::string ProgramHelp(const CommandTable& table)
{
    std::string text = "Usage: plenoviz-cli COMMAND [options] [pictures]\n\nCommands:\n";
    for (int i = 0; i < table.count; i++)
        AddRow(&text, kCommandColumn, table.rows[i].name, table.rows[i].summary);
    text += "\nOptions:\n";
    AddRow(&text, kCommandColumn, "--help",
           "print this help; after a command, the help of that command");
    AddRow(&text, kCommandColumn, "--version", "print the version");
    text += "\n";
    AddWords(
        &text, 0,
        "The exit code is 0 when the work is done, 1 when it failed and 2 when the command line "
        "makes no sense or the result has no place to go to. When a command fails, no output file "
        "appears or changes.");
    return text;
}
