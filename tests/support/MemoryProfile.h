#pragma once

#include "text/ProfileStore.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

// A profile file in memory. Remembers the order of writes, and can refuse or lose them.
struct MemoryProfile
{
    std::map<std::wstring, std::wstring> values; // keys: "section/key" in lower case
    std::vector<std::wstring> written;           // "key=value"
    int writes = 0;                              // each takes all of its values at once
    bool refuseWrites = false;
    bool loseWrites = false; // says yes and keeps nothing

    void Set(const std::wstring& section, const std::wstring& key, const std::wstring& value);
    ProfileStore Store();
};
