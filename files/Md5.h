#pragma once

#include <cstdint>
#include <string>
#include <vector>

// The MD5 sum in capital hexadecimals. XMP names extensions by it; it protects nothing.
std::string Md5Hex(const std::vector<uint8_t>& bytes);
