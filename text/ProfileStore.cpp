#include "text/ProfileStore.h"

#include <algorithm>
#include <climits>
#include <cstdint>

const char* g_productName = "Plenoviz";
const wchar_t kGeneralSection[] = L"General";

int DecimalNumber(const std::wstring& text)
{
    const bool negative = !text.empty() && text[0] == L'-';
    size_t i = negative || (!text.empty() && text[0] == L'+') ? 1 : 0;
    int64_t number = 0;
    for (; i < text.size() && text[i] >= L'0' && text[i] <= L'9'; ++i)
        number = std::min<int64_t>(number * 10 + (text[i] - L'0'), int64_t(INT_MAX) + 1);
    if (negative)
        return int(-number);
    return int(std::min<int64_t>(number, INT_MAX));
}

std::wstring ReadText(const ProfileStore& store, const std::wstring& section,
                      const std::wstring& key, const wchar_t* missing)
{
    std::wstring text;
    return store.read(section, key, &text) ? text : missing;
}

int ReadNumber(const ProfileStore& store, const std::wstring& section, const std::wstring& key,
               int missing)
{
    std::wstring text;
    return store.read(section, key, &text) ? DecimalNumber(text) : missing;
}

Outcome WriteNumber(const ProfileStore& store, const std::wstring& section, const std::wstring& key,
                    int number)
{
    return FailedIf(!store.write(section, {{key, std::to_wstring(number)}}));
}
