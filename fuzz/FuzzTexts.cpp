#include "fuzz/FuzzTarget.h"

#include "app/FileNames.h"
#include "cli/CommandHelp.h"
#include "cli/Commands.h"
#include "text/LanguageFile.h"
#include "text/Strings.h"
#include "tools/Settings.h"
#include "view/ImageViewZoom.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

// Texts that people and other programs write: settings, localisation, the zoom box, file names and
// the command line. The first byte chooses, the rest is UTF-8 or anything.

using WideText = std::wstring;

static WideText Lower(WideText text)
{
    for (wchar_t& letter : text)
        if (letter >= L'A' && letter <= L'Z')
            letter += L'a' - L'A';
    return text;
}

// "[section]" and "key=value" lines, as in the files.
static ProfileStore StoreOf(std::map<WideText, WideText>* values, const WideText& file)
{
    WideText section;
    for (size_t start = 0; start < file.size();)
    {
        const size_t end = std::min(file.find(L'\n', start), file.size());
        const WideText line = file.substr(start, end - start);
        const size_t equals = line.find(L'=');
        if (!line.empty() && line[0] == L'[')
            section = Lower(line.substr(1, line.find(L']') - 1));
        else if (equals != line.npos)
            (*values)[section + L'/' + Lower(line.substr(0, equals))] = line.substr(equals + 1);
        start = end + 1;
    }
    ProfileStore store;
    store.read = [values](const WideText& in, const WideText& key, WideText* value)
    {
        const auto found = values->find(Lower(in) + L'/' + Lower(key));
        if (found != values->end())
            *value = found->second;
        return found != values->end();
    };
    store.write = [values](const WideText& in, const std::vector<ProfileValue>& written)
    {
        for (const ProfileValue& value : written)
            (*values)[Lower(in) + L'/' + Lower(value.key)] = value.value;
        return true;
    };
    return store;
}

static void PromiseRanges(const ToolNumbers& numbers)
{
    for (const ParameterRow& row : AllParameters())
    {
        const int number = NumberOf(numbers, row);
        Promise(number >= row.stored.range.low && number <= row.stored.range.high);
    }
}

static void TrySettings(const WideText& file)
{
    std::map<WideText, WideText> values;
    const ProfileStore store = StoreOf(&values, file);
    const SettingGroup groups[] = {SettingGroup::PowerTool, SettingGroup::FusionTool,
                                   SettingGroup::LevelsOfDetail, SettingGroup::NoisePrompt,
                                   SettingGroup::SaveDialog};
    Settings settings = {}, again = {};
    LanguageList languages;
    LoadSettings(store, store, &settings, &languages);
    Promise(languages.count >= 0 && languages.count <= kMaxLanguages &&
            int(languages.languages.size()) == languages.count);
    for (const SettingGroup group : groups)
        ReadSettings(store, group, &settings);
    PromiseRanges(settings);
    // What was written is what comes back.
    for (const SettingGroup group : {SettingGroup::FusionTool, SettingGroup::LevelsOfDetail})
    {
        Promise(WriteSettings(store, group, &settings) == Outcome::Done);
        ReadSettings(store, group, &again);
    }
    Promise(settings.fusionTool.exposure == again.fusionTool.exposure &&
            std::equal(settings.levelsOfDetail, settings.levelsOfDetail + 8, again.levelsOfDetail));
    (void)SaveSettingsOnExit(store, &settings);
}

static void TryLocalisation(const WideText& file)
{
    std::map<WideText, WideText> values;
    const ProfileStore store = StoreOf(&values, file);
    LanguageList languages;
    LoadLanguageChoice(store, &languages);
    LoadLanguageNames(store, &languages);
    LoadStrings(store, languages.current);
    for (const auto& text : g_strings)
        Promise(std::find(text, text + kStringChars, L'\0') != text + kStringChars);
    (void)ChooseLanguage(store, &languages, languages.count - 1);
}

static void TryZoom(const WideText& text)
{
    double scale = -1.0, again = -1.0;
    if (!ParseZoomText(&scale, text))
        return;
    Promise(scale >= 0.1 && scale <= 8.0);
    Promise(ParseZoomText(&again, ZoomText(scale)) && std::abs(scale - again) <= 0.00051);
}

static void TryFileNames(const WideText& name)
{
    for (const int bits : {8, 16})
    {
        const size_t types = SaveTypesFor(bits).size();
        const int preselected = PreselectedSaveType(name, bits);
        Promise(preselected >= 0 && preselected <= int(types));
        Promise(ProposedSaveName(name).find(L'\\') == WideText::npos);
        for (int type = 1; type <= int(types); ++type)
            Promise(SaveTargetOf(name, type, bits).path.find(name) == 0);
    }
}

// Arguments stand between line ends.
static void TryCommandLine(const std::string& text)
{
    std::vector<std::string> arguments;
    for (size_t start = 0; start < text.size();)
    {
        const size_t end = std::min(text.find('\n', start), text.size());
        arguments.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    const ParsedLine line = ParseCommandLine(Commands(), arguments);
    Promise((line.action == ParsedAction::WrongUsage) == !line.message.empty());
    if (line.action == ParsedAction::ShowCommandHelp)
        Promise(!CommandHelp(*line.command).empty());
    if (line.action != ParsedAction::Run)
        return;
    Promise(int(line.options.inputs.size()) >= line.command->minInputs);
    for (const OptionRow& row : OptionsOf(*line.command))
    {
        Promise(!row.required || !(line.options.*row.text).empty());
        if (row.number)
            Promise(line.options.*row.number >= row.low && line.options.*row.number <= row.high);
    }
    PromiseRanges(line.options.numbers);
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const std::string bytes(data + 1, data + size);
    const WideText text(data + 1,
                        data + size); // a letter per byte: the rules look at no other ones
    switch (data[0])
    {
    case 's': TrySettings(text); break;
    case 'l': TryLocalisation(text); break;
    case 'z': TryZoom(text); break;
    case 'f': TryFileNames(text); break;
    case 'c': TryCommandLine(bytes); break;
    }
    return 0;
}
