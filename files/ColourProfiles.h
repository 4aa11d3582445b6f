#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Colours of printing inks (cyan, magenta, yellow, black) as blue, green, red of sRGB: through the
// file's own profile, or, without one that fits, each light as what its ink and black let through.
class InkTransform
{
public:
    // Samples of 8 or 16 bits; `inverted`: the largest sample means no ink.
    InkTransform(const std::vector<uint8_t>& profile, int bits, bool inverted);
    ~InkTransform();
    InkTransform(const InkTransform&) = delete;
    InkTransform& operator=(const InkTransform&) = delete;

    // Four samples a pixel in, three out.
    void ToColours(void* colours, const void* inks, int pixels) const;

    // What the user is told of it.
    std::string Note() const;

private:
    void* transform = nullptr; // the library's; null = the simple way
    int bits;
    bool inverted;
};
