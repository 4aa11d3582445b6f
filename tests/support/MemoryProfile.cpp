#include "tests/support/MemoryProfile.h"

#include <cwctype>

static std::wstring PlaceOf(const std::wstring& section, const std::wstring& key)
{
    std::wstring place = section + L'/' + key;
    for (wchar_t& letter : place)
        letter = wchar_t(std::towlower(wint_t(letter)));
    return place;
}

void MemoryProfile::Set(const std::wstring& section, const std::wstring& key,
                        const std::wstring& value)
{
    values[PlaceOf(section, key)] = value;
}

ProfileStore MemoryProfile::Store()
{
    using Text = std::wstring;
    ProfileStore store;
    store.read = [this](const Text& section, const Text& key, Text* value)
    {
        const auto found = values.find(PlaceOf(section, key));
        if (found == values.end())
            return false;
        *value = found->second;
        return true;
    };
    store.write = [this](const Text& section, const std::vector<ProfileValue>& all)
    {
        if (refuseWrites)
            return false;
        ++writes;
        for (const ProfileValue& value : all)
        {
            written.push_back(value.key + L'=' + value.value);
            if (!loseWrites)
                Set(section, value.key, value.value);
        }
        return true;
    };
    return store;
}
