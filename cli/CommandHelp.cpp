#include "cli/CommandLine.h"

#include <algorithm>

// Two columns; the second starts at the same place in every line.
static void AddLine(std::string* text, const std::string& left, const std::string& right)
{
    constexpr size_t kColumn = 24;
    *text +=
        "  " + left + std::string(kColumn - std::min(left.size(), kColumn - 2), ' ') + right + "\n";
}

static std::string OptionLabel(const OptionRow& row)
{
    std::string label = row.letter ? std::string{'-', row.letter} + ", " : "    ";
    label += row.name;
    if (row.argument)
        label += std::string(" ") + row.argument;
    return label;
}

static std::string OptionText(const OptionRow& row)
{
    std::string text = row.help;
    if (row.number)
        text += " (" + std::to_string(row.low) + " to " + std::to_string(row.high) + ", default " +
                std::to_string(row.byDefault) + ")";
    return text;
}

std::string CommandHelp(const CommandRow& command)
{
    std::string text = "Usage: plenoviz-cli " + std::string(command.name) + " [options]";
    for (const OptionRow* row : OptionsOf(command))
        if (row->required)
            text += std::string(" ") + row->name + " " + row->argument;
    text += (*command.arguments ? " " : "") + std::string(command.arguments) + "\n\n";
    text += std::string(command.details) + "\n\nOptions:\n";
    for (const OptionRow* row : OptionsOf(command))
        AddLine(&text, OptionLabel(*row), OptionText(*row));
    if (*command.arguments)
        text += "\nAfter -- everything is a file name, even if it begins with a dash.\n";
    return text;
}

std::string ProgramHelp(const CommandTable& table)
{
    std::string text = "Usage: plenoviz-cli COMMAND [options] [pictures]\n\nCommands:\n";
    for (int i = 0; i < table.count; i++)
        AddLine(&text, table.rows[i].name, table.rows[i].summary);
    text += "\nOptions:\n";
    AddLine(&text, "--help", "print this help; after a command, the help of that command");
    AddLine(&text, "--version", "print the version");
    text += "\nThe exit code is 0 when the work is done, 1 when it failed and 2 when the command\n"
            "line makes no sense. When a command fails, no output file appears or changes.\n";
    return text;
}
