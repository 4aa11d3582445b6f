#include "app/FileNames.h"

#include <algorithm>
#include <cwctype>

// Of the names that dialogs show, the first is the one that we append.
static std::vector<std::wstring> EndingsOf(const FormatRow& row)
{
    std::vector<std::wstring> endings;
    for (const std::string& ending : EndingsIn(row.endings))
        endings.emplace_back(ending.begin(), ending.end()); // plain letters
    return endings;
}

// "*.jpg;*.jpeg"
static std::wstring PatternOf(const FormatRow& row)
{
    std::wstring pattern;
    for (const std::wstring& ending : EndingsOf(row))
        pattern += (pattern.empty() ? L"*" : L";*") + ending;
    return pattern;
}

std::vector<SaveType> SaveTypesFor(int bitsPerComponent)
{
    // Both greys and colours: what the dialog offers must not depend on the photograph's
    // components.
    const unsigned kinds = bitsPerComponent == 16 ? kHolds16 : kHolds8;
    std::vector<SaveType> types;
    for (const FormatRow* row : SaveFormats())
        if ((row->holds & kinds) == kinds)
            types.push_back({PatternOf(*row), EndingsOf(*row).front(), row->id});
    return types;
}

std::wstring OpenPattern(bool series)
{
    std::wstring pattern;
    for (const FormatRow& row : kFormats)
        if (row.opened == OpenDialogs::All || (series && row.opened == OpenDialogs::Series))
            pattern += (pattern.empty() ? L"" : L";") + PatternOf(row);
    return pattern;
}

// Without regard to case, as the file system sees names.
static bool SameText(const std::wstring& a, const std::wstring& b)
{
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(),
                      [](wchar_t x, wchar_t y)
                      { return std::towlower(wint_t(x)) == std::towlower(wint_t(y)); });
}

static std::wstring LastPart(const std::wstring& path)
{
    const size_t separator = path.rfind(L'\\');
    return separator == std::wstring::npos ? path : path.substr(separator + 1);
}

// Whether the name's ending, from its last dot on, is one of the type's. Whatever lies before a dot
// is the name itself: photographs are called 2020.05.17.jpg.
static bool HasEndingOf(const std::wstring& name, const SaveType& type)
{
    const size_t dot = name.rfind(L'.');
    if (dot == name.npos)
        return false;
    for (const std::wstring& ending : EndingsOf(*FindFormat(type.format)))
        if (SameText(name.substr(dot), ending))
            return true;
    return false;
}

std::wstring ProposedSaveName(const std::wstring& currentFile)
{
    const std::wstring name = LastPart(currentFile);
    return name.substr(0, name.rfind(L'.')) + L"-vexa";
}

int PreselectedSaveType(const std::wstring& currentFile, int bitsPerComponent)
{
    const std::wstring name = LastPart(currentFile);
    const std::vector<SaveType> types = SaveTypesFor(bitsPerComponent);
    for (size_t i = 0; i < types.size(); ++i)
        if (HasEndingOf(name, types[i]))
            return int(i) + 1;
    return 0;
}

SaveTarget SaveTargetOf(const std::wstring& chosenName, int selectedType, int bitsPerComponent)
{
    const std::vector<SaveType> types = SaveTypesFor(bitsPerComponent);
    for (const SaveType& type : types)
        if (HasEndingOf(chosenName, type))
            return {chosenName, type.format};
    const int index = std::clamp(selectedType, 1, int(types.size())) - 1;
    const SaveType& type = types[size_t(index)];
    return {chosenName + type.extension, type.format};
}

std::wstring DialogFilter(const std::vector<std::wstring>& patterns)
{
    std::wstring filter;
    for (const std::wstring& pattern : patterns)
        filter.append(pattern).append(1, L'\0').append(pattern).append(1, L'\0');
    return filter + L'\0';
}
