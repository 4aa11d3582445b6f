#include "tools/Parameters.h"

#include "cli/CommandHelp.h"
#include "cli/Commands.h"
#include "cli/ParameterOptions.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>

// Sliders, boxes and lists: what users see of a tool.
static std::vector<ParameterRow> ShownParameters()
{
    std::vector<ParameterRow> rows;
    for (const ParameterRow& row : AllParameters())
        if (row.kind != ParameterKind::Kept)
            rows.push_back(row);
    return rows;
}

static std::string Narrow(const wchar_t* text)
{
    const std::wstring wide = text;
    return std::string(wide.begin(), wide.end());
}

TEST(ParameterTable, HasARowForEveryNumberAndThoseOfAToolTogether)
{
    std::set<size_t> fields;
    std::set<std::pair<Tool, std::wstring>> keys;
    for (const ParameterRow& row : AllParameters())
    {
        EXPECT_TRUE(fields.insert(row.field).second) << Narrow(row.stored.key);
        EXPECT_TRUE(keys.insert({row.tool, row.stored.key}).second) << Narrow(row.stored.key);
    }
    EXPECT_EQ(fields.size() * sizeof(int), sizeof(ToolNumbers)) << "a number that has no row";
    int inTools = 0;
    for (int tool = 0; tool < kToolCount; ++tool)
        inTools += ParametersOf(Tool(tool)).count;
    EXPECT_EQ(inTools, AllParameters().count);
}

TEST(ParameterTable, HasDefaultsThatItsRangesAllow)
{
    for (const ParameterRow& row : AllParameters())
    {
        const StoredNumber& stored = row.stored;
        SCOPED_TRACE(Narrow(stored.key));
        EXPECT_LT(stored.range.low, stored.range.high);
        EXPECT_GE(stored.standard, stored.range.low);
        EXPECT_LE(stored.standard, stored.range.high);
    }
    for (int tool = 0; tool < kToolCount; ++tool)
    {
        const ToolNumbers opened = OpenedNumbers(Tool(tool), DefaultNumbers());
        for (const ParameterRow& row : ParametersOf(Tool(tool)))
            EXPECT_EQ(NumberOf(opened, row), row.kind == ParameterKind::CheckBox
                                                 ? row.stored.standard != 0
                                                 : row.stored.standard);
    }
}

TEST(ParameterTable, HasWordsForWhateverIsShown)
{
    std::set<std::string> options;
    for (const ParameterRow& row : ShownParameters())
    {
        SCOPED_TRACE(Narrow(row.stored.key));
        ASSERT_TRUE(row.option && std::string(row.option).substr(0, 2) == "--");
        // A further row of an option stands behind the one with the words.
        EXPECT_NE(options.insert(row.option).second, row.help == nullptr);
        EXPECT_EQ(row.text == kNoText, row.tool == Tool::SmartContrast);
        EXPECT_EQ(row.text == kNoText, *EnglishText(row.text) == 0);
        for (int i = 0; row.kind == ParameterKind::List && i <= row.stored.range.high; ++i)
            EXPECT_TRUE(*EnglishText(row.choices[i].text) && *row.choices[i].word);
    }
}

// The commands that take the option of a row.
static std::vector<const CommandRow*> CommandsWith(const ParameterRow& row)
{
    std::vector<const CommandRow*> commands;
    for (int i = 0; i < Commands().count; ++i)
        for (const OptionRow& option : OptionsOf(Commands().rows[i]))
            if (option.parameter && std::string(option.name) == row.option)
                commands.push_back(&Commands().rows[i]);
    return commands;
}

static ParsedLine Parsed(const CommandRow& command, const std::string& option,
                         const std::string& value)
{
    return ParseCommandLine(Commands(), {command.name, "--output=a.png", option + "=" + value, "--",
                                         "single", "a.png"});
}

TEST(ParameterOptions, StoreEveryNumberOfTheRangeAndNoOther)
{
    for (const ParameterRow& row : ShownParameters())
    {
        SCOPED_TRACE(row.option);
        EXPECT_FALSE(CommandsWith(row).empty()) << "no command takes it";
        const SliderRange& range = row.stored.range;
        if (row.tool == Tool::SmartContrast || row.kind != ParameterKind::Slider)
            continue; // values of other shapes: below
        for (const CommandRow* command : CommandsWith(row))
        {
            const std::string help = CommandHelp(*command);
            EXPECT_NE(help.find(std::string(row.option) + " N "), help.npos);
            for (const int number : {range.low, range.high})
            {
                const ParsedLine line = Parsed(*command, row.option, std::to_string(number));
                EXPECT_EQ(line.action, ParsedAction::Run) << line.message;
                EXPECT_EQ(NumberOf(line.options.numbers, row), number);
            }
            for (const int number : {range.low - 1, range.high + 1})
            {
                const ParsedLine line = Parsed(*command, row.option, std::to_string(number));
                EXPECT_NE(line.message.find("from " + std::to_string(range.low) + " to " +
                                            std::to_string(range.high)),
                          line.message.npos)
                    << line.message;
            }
        }
    }
}

TEST(ParameterOptions, TakeWordsListsAndNothingAtAll)
{
    const auto numbers = [](const std::vector<std::string>& arguments)
    { return ParseCommandLine(Commands(), arguments).options.numbers; };
    EXPECT_EQ(numbers({"single", "a.png"}).denoiseStrength, 1);
    EXPECT_EQ(numbers({"single", "--noise", "high", "a.png"}).denoiseStrength, 3);
    EXPECT_NE(numbers({"tone-map", "a.png"}).toneMap.useColors, 0);
    EXPECT_EQ(numbers({"tone-map", "--luminance-only", "a.png"}).toneMap.useColors, 0);
    const ToolNumbers levels = numbers({"smart-contrast", "--lod", "0,1,2,3,4,5,6,30", "a.png"});
    EXPECT_EQ(levels.levelsOfDetail[0], 0);
    EXPECT_EQ(levels.levelsOfDetail[6], 6);
    EXPECT_EQ(levels.levelsOfDetail[7], 30);
    for (const char* wrong : {"1,2,3,4,5,6,7", "1,2,3,4,5,6,7,8,9", "1,2,3,4,5,6,7,31", "10"})
        EXPECT_EQ(
            Parsed(*CommandsWith(ParametersOf(Tool::SmartContrast)[0])[0], "--lod", wrong).action,
            ParsedAction::WrongUsage)
            << wrong;
}

TEST(Guide, NamesEverySliderWithItsRange)
{
    std::ifstream file(PLENOVIZ_GUIDE);
    const std::string guide((std::istreambuf_iterator<char>(file)), {});
    for (const ParameterRow& row : ShownParameters())
    {
        if (row.kind == ParameterKind::List || row.text == kNoText)
            continue; // told in a sentence
        const StoredNumber& stored = row.stored;
        const std::string label = Narrow(EnglishText(row.text));
        EXPECT_NE(guide.find(label.substr(0, label.find(':'))), std::string::npos) << label;
        const std::string range = std::to_string(stored.range.low) + " to " +
                                  std::to_string(stored.range.high) + ", at first " +
                                  std::to_string(stored.standard);
        if (row.kind == ParameterKind::CheckBox)
            continue;
        EXPECT_NE(guide.find(range), std::string::npos) << label << " " << range;
    }
}
