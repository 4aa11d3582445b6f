#pragma once

#include <string>

// The text as a terminal may get it: line ends, escape sequences and other letters that steer a
// terminal or turn its writing round, and bytes that are no UTF-8, become \n, \x1b or \u202e. File
// names can hold all of these.
std::string ShownText(const std::string& text);
