#pragma once

#include <cstddef>
#include <string>

// Printf into wide text, with %s for wide and %S for narrow text. swprintf is no alternative here:
// the compiler's C++ library takes %s as narrow text and reads past its end.

// Writes at most capacity - 1 characters and always a final zero. False when the text was cut.
bool VcFormat(wchar_t* text, size_t capacity, const wchar_t* format, ...);

// The whole text, however long.
std::wstring VcFormatText(const wchar_t* format, ...);

// What the system says about one of its error numbers, in its own language.
std::wstring SystemErrorText(unsigned long error);
