#include "files/Md5.h"

#include <cmath>
#include <cstdio>

// RFC 1321: blocks of sixteen words are stirred into a state of four, in four rounds of sixteen
// steps. The constants are the fractions of sines.

static uint32_t Turned(uint32_t value, int bits)
{
    return value << bits | value >> (32 - bits);
}

static void Stir(uint32_t state[4], const uint8_t* block)
{
    static const int kTurns[4][4] = {
        {7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};
    uint32_t words[16];
    for (int i = 0; i < 16; ++i)
        words[i] = uint32_t(block[4 * i]) | uint32_t(block[4 * i + 1]) << 8 |
                   uint32_t(block[4 * i + 2]) << 16 | uint32_t(block[4 * i + 3]) << 24;
    uint32_t a = state[0], b = state[1], c = state[2], d = state[3];
    for (int i = 0; i < 64; ++i)
    {
        const int round = i / 16;
        const uint32_t mixed = round == 0   ? (b & c) | (~b & d)
                               : round == 1 ? (d & b) | (~d & c)
                               : round == 2 ? b ^ c ^ d
                                            : c ^ (b | ~d);
        static const int kFactor[] = {1, 5, 3, 7}, kStart[] = {0, 1, 5, 0};
        const auto sine = uint32_t(std::floor(4294967296.0 * std::fabs(std::sin(i + 1.0))));
        const uint32_t sum = a + mixed + sine + words[(kFactor[round] * i + kStart[round]) % 16];
        a = d;
        d = c;
        c = b;
        b += Turned(sum, kTurns[round][i % 4]);
    }
    state[0] += a;
    state[1] += b;
    state[2] += c;
    state[3] += d;
}

std::string Md5Hex(const std::vector<uint8_t>& bytes)
{
    uint32_t state[4] = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};
    std::vector<uint8_t> padded = bytes;
    padded.push_back(0x80);
    while (padded.size() % 64 != 56)
        padded.push_back(0);
    for (int i = 0; i < 8; ++i)
        padded.push_back(uint8_t(uint64_t(bytes.size()) * 8 >> (8 * i)));
    for (size_t at = 0; at < padded.size(); at += 64)
        Stir(state, &padded[at]);
    std::string text;
    for (int i = 0; i < 16; ++i)
    {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02X", state[i / 4] >> (8 * (i % 4)) & 0xFF);
        text += digits;
    }
    return text;
}
