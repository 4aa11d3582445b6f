#include "cli/ShownText.h"

#include <cstdint>
#include <cstdio>

// How many bytes the letter at that place has, 0 when they are no UTF-8.
static size_t ReadLetter(uint32_t* letter, const std::string& text, size_t at)
{
    const auto byte = [&](size_t i) { return i < text.size() ? uint8_t(text[i]) : uint8_t(0); };
    const uint8_t first = byte(at);
    const size_t bytes = first < 0x80   ? 1
                         : first < 0xC2 ? 0
                         : first < 0xE0 ? 2
                         : first < 0xF0 ? 3
                                        : 4;
    if (bytes == 0 || first > 0xF4)
        return 0;
    *letter = bytes == 1 ? first : first & (0x7Fu >> bytes);
    for (size_t i = 1; i < bytes; i++)
    {
        if ((byte(at + i) & 0xC0) != 0x80)
            return 0;
        *letter = *letter << 6 | (byte(at + i) & 0x3Fu);
    }
    static const uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = *letter >= 0xD800 && *letter < 0xE000;
    return *letter < kSmallest[bytes] || *letter > 0x10FFFF || surrogate ? 0 : bytes;
}

// Control letters, separators of lines, and what changes the direction of writing.
static bool Steers(uint32_t letter)
{
    return letter < 0x20 || (letter >= 0x7F && letter < 0xA0) || letter == 0x200E ||
           letter == 0x200F || (letter >= 0x2028 && letter <= 0x202E) ||
           (letter >= 0x2066 && letter <= 0x2069);
}

static std::string Escaped(uint32_t letter)
{
    switch (letter)
    {
    case '\n': return "\\n";
    case '\r': return "\\r";
    case '\t': return "\\t";
    }
    char text[16];
    std::snprintf(text, sizeof text, letter < 0x100 ? "\\x%02x" : "\\u%04x", unsigned(letter));
    return text;
}

std::string ShownText(const std::string& text)
{
    std::string shown;
    for (size_t at = 0; at < text.size();)
    {
        uint32_t letter = 0;
        const size_t bytes = ReadLetter(&letter, text, at);
        if (bytes == 0)
            shown += Escaped(uint8_t(text[at]));
        else if (Steers(letter))
            shown += Escaped(letter);
        else
            shown.append(text, at, bytes);
        at += bytes > 0 ? bytes : 1;
    }
    return shown;
}
