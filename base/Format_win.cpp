#include "base/Format_win.h"

#include "base/Win.h"

#include <cstdarg>
#include <cstdio>

// The system's routine returns -1 when the text does not fit, and then leaves out the final zero.
static bool FormatInto(wchar_t* text, size_t capacity, const wchar_t* format, va_list arguments)
{
    const int count = _vsnwprintf(text, capacity, format, arguments);
    if (count >= 0 && size_t(count) < capacity)
        return true;
    text[capacity - 1] = L'\0';
    return false;
}

bool VcFormat(wchar_t* text, size_t capacity, const wchar_t* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const bool complete = FormatInto(text, capacity, format, arguments);
    va_end(arguments);
    return complete;
}

std::wstring VcFormatText(const wchar_t* format, ...)
{
    constexpr size_t kLongest = size_t(1) << 20; // ends the search if a conversion keeps failing
    std::wstring text(256, L'\0');
    for (bool complete = false; !complete && text.size() < kLongest;)
    {
        va_list arguments;
        va_start(arguments, format);
        complete = FormatInto(&text[0], text.size(), format, arguments);
        va_end(arguments);
        if (!complete)
            text.resize(text.size() * 4);
    }
    text.resize(text.find(L'\0'));
    return text;
}

std::wstring SystemErrorText(unsigned long error)
{
    wchar_t text[256] = L"";
    FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0,
                   text, 256, nullptr);
    const std::wstring whole = text;
    return whole.substr(0, whole.find_last_not_of(L"\r\n ") + 1);
}
