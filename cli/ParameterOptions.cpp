#include "cli/ParameterOptions.h"

#include <cstring>

static int CountOf(const ParameterRow& row)
{
    int count = 0;
    for (const ParameterRow& other : ParametersOf(row.tool))
        count += other.option && std::strcmp(other.option, row.option) == 0;
    return count;
}

std::vector<OptionRow> ParameterOptions(Tool tool)
{
    std::vector<OptionRow> options;
    for (const ParameterRow& row : ParametersOf(tool))
    {
        if (!row.option || !row.help)
            continue; // none, or one that another row begins
        OptionRow option = {};
        option.name = row.option;
        option.help = row.help;
        option.parameter = &row;
        options.push_back(option);
    }
    return options;
}

std::string ParameterArgument(const ParameterRow& row)
{
    switch (row.kind)
    {
    case ParameterKind::List: return "LEVEL";
    case ParameterKind::Slider: break;
    default: return "";
    }
    std::string argument = "N";
    for (int i = 1; i < CountOf(row); ++i)
        argument += ",N";
    return argument;
}

// "none, low, medium or high"
static std::string ChoicesOf(const ParameterRow& row)
{
    std::string words;
    for (int i = row.stored.range.low; i <= row.stored.range.high; ++i)
        words += std::string(i == row.stored.range.low   ? ""
                             : i < row.stored.range.high ? ", "
                                                         : " or ") +
                 row.choices[i].word;
    return words;
}

std::string ParameterRangeHelp(const ParameterRow& row)
{
    const SliderRange& range = row.stored.range;
    const std::string standard = "default " + std::to_string(row.stored.standard);
    switch (row.kind)
    {
    case ParameterKind::List:
        return ": " + ChoicesOf(row) + " (default " + row.choices[row.stored.standard].word + ")";
    case ParameterKind::Slider:
        if (CountOf(row) > 1)
            return " (" + standard + " for all)";
        return " (" + std::to_string(range.low) + " to " + std::to_string(range.high) + ", " +
               standard + ")";
    default: return "";
    }
}

static std::string CountInWords(int count)
{
    static const char* const kWords[] = {"no",   "one", "two",   "three", "four",
                                         "five", "six", "seven", "eight", "nine"};
    return count < 10 ? kWords[count] : std::to_string(count);
}

std::string ParameterTakes(const ParameterRow& row)
{
    if (row.kind == ParameterKind::List)
        return ChoicesOf(row);
    const SliderRange& range = row.stored.range;
    const std::string bounds = std::to_string(range.low) + " to " + std::to_string(range.high);
    const int count = CountOf(row);
    return count > 1 ? CountInWords(count) + " numbers from " + bounds + " with commas between them"
                     : "a whole number from " + bounds;
}

static bool StoreWord(ToolNumbers* numbers, const ParameterRow& row, const std::string& word)
{
    for (int i = row.stored.range.low; i <= row.stored.range.high; ++i)
        if (word == row.choices[i].word)
        {
            *NumberAt(numbers, row) = i;
            return true;
        }
    return false;
}

// As many numbers as there are rows, which stand together.
static bool StoreNumbers(ToolNumbers* numbers, const ParameterRow* row, const std::string& value)
{
    const int count = CountOf(*row);
    size_t start = 0;
    for (int i = 0; i < count; ++i, ++row)
    {
        const size_t comma = value.find(',', start);
        const SliderRange& range = row->stored.range;
        long long number;
        if (!ParseNumber(value.substr(start, comma - start), &number) || number < range.low ||
            number > range.high || (comma == value.npos) != (i == count - 1))
            return false;
        *NumberAt(numbers, *row) = int(number);
        start = comma + 1;
    }
    return true;
}

bool StoreParameter(ToolNumbers* numbers, const ParameterRow& row, const std::string& value)
{
    switch (row.kind)
    {
    case ParameterKind::CheckBox: *NumberAt(numbers, row) = row.stored.standard == 0; return true;
    case ParameterKind::List: return StoreWord(numbers, row, value);
    default: return StoreNumbers(numbers, &row, value);
    }
}
