#include "files/SimpleFormats.h"

#include "files/FileHeaders.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

static int64_t LittleNumber(const uint8_t* bytes, int count)
{
    uint64_t value = 0;
    for (int i = 0; i < count; ++i)
        value |= uint64_t(bytes[i]) << (8 * i);
    return int64_t(value);
}

struct BmpHeader
{
    bool known = false;
    int64_t offset = 0, width = 0, height = 0; // of the pixels
    int bits = 0, packing = 0;
};

static BmpHeader ReadBmpHeader(FILE* file)
{
    uint8_t head[34] = {};
    BmpHeader bmp;
    std::rewind(file);
    if (std::fread(head, sizeof head, 1, file) != 1 || std::memcmp(head, "BM", 2) != 0)
        return bmp;
    const int64_t kOldestHeader = 12; // numbers of two bytes
    const bool oldest = LittleNumber(head + 14, 4) == kOldestHeader;
    bmp.offset = LittleNumber(head + 10, 4);
    bmp.width = oldest ? LittleNumber(head + 18, 2) : int32_t(LittleNumber(head + 18, 4));
    const int64_t height =
        oldest ? LittleNumber(head + 20, 2) : int32_t(LittleNumber(head + 22, 4));
    bmp.height = std::abs(height); // negative: the top row comes first
    bmp.bits = int(LittleNumber(head + (oldest ? 24 : 28), 2));
    bmp.packing = oldest ? 0 : int(LittleNumber(head + 30, 4));
    bmp.known = true;
    return bmp;
}

// Runs of equal pixels, for 8 and 4 bits.
static bool IsRunLength(const BmpHeader& bmp)
{
    return bmp.packing == 1 || bmp.packing == 2;
}

SimpleClaim FindBmpClaim(FILE* file)
{
    const BmpHeader bmp = ReadBmpHeader(file);
    SimpleClaim found;
    found.known = bmp.known;
    found.claim.width = bmp.width;
    found.claim.height = bmp.height;
    found.claim.alpha = bmp.bits == 32;
    found.claim.decoderBytes = PixelsClaimed(found.claim) * std::max(bmp.bits, 24) / 8;
    // Rows begin at multiples of four bytes; nothing is missing with the filling of the last one.
    const int64_t rowBytes = (bmp.width * bmp.bits + 31) / 32 * 4;
    if (!IsRunLength(bmp) && bmp.width > 0 && bmp.height > 0)
        found.claim.leastFileBytes =
            bmp.height < kMostBytesClaimed / (rowBytes + 1)
                ? bmp.offset + rowBytes * (bmp.height - 1) + (bmp.width * bmp.bits + 7) / 8
                : kMostBytesClaimed;
    return found;
}

// A pair of bytes is a run, or, after a zero: the end of a row (0) or of the picture (1), a jump
// (2), or a number of pixels that follow as they are, in whole pairs.
void CheckBmpPixels(Decoding* decoding)
{
    const BmpHeader bmp = ReadBmpHeader(decoding->file);
    if (!IsRunLength(bmp))
        return;
    SeekFile(decoding->file, bmp.offset);
    int64_t x = 0, y = 0;
    const auto share = [&] { return double(y) / double(std::max<int64_t>(bmp.height, 1)); };
    for (;;)
    {
        const int count = std::fgetc(decoding->file), value = std::fgetc(decoding->file);
        if (value == EOF)
            return NoteDamage(decoding, EndText(std::min(share(), 0.99)), share());
        if (count > 0)
            x += count;
        else if (value == 0)
            x = 0, ++y;
        else if (value == 1)
            break;
        else if (value == 2)
        {
            x += std::fgetc(decoding->file);
            y += std::fgetc(decoding->file);
        }
        else
        {
            x += value;
            const int bytes = bmp.packing == 1 ? value : (value + 1) / 2;
            for (int i = 0; i < (bytes + 1) / 2 * 2; ++i)
                std::fgetc(decoding->file);
        }
        if (x > bmp.width || y > bmp.height)
            return NoteDamage(decoding, "a run of pixels leaves the picture", share());
    }
    if (y < bmp.height - 1)
        NoteDamage(decoding, "the picture's data end too early", share());
}

SimpleClaim FindGifClaim(FILE* file)
{
    SimpleClaim found;
    int width = 0, height = 0;
    found.known = GifFrameSize(file, &width, &height);
    found.claim.width = width;
    found.claim.height = height;
    found.claim.decoderBytes = int64_t(width) * height;
    // Codes of up to 12 bits stand for up to 4096 pixels.
    found.claim.leastFileBytes = int64_t(width) * height / 4096;
    return found;
}

namespace
{

// The pieces of a GIF frame's data, each with its length before it, as a stream of codes.
class GifCodes
{
public:
    explicit GifCodes(FILE* stream) : file(stream) {}

    // -1 at the end of the pieces, -2 at the end of the file.
    int Next(int bits)
    {
        for (; held < bits; held += 8)
        {
            if (left == 0)
                left = std::fgetc(file);
            if (left <= 0)
                return left == 0 ? -1 : -2;
            const int byte = std::fgetc(file);
            if (byte == EOF)
                return -2;
            --left;
            store |= uint32_t(byte) << held;
        }
        const int code = int(store & ((1u << bits) - 1));
        store >>= bits;
        held -= bits;
        return code;
    }

    // Whether the pieces come to their end.
    bool SkipRest()
    {
        for (;;)
        {
            for (; left > 0; --left)
                if (std::fgetc(file) == EOF)
                    return false;
            left = std::fgetc(file);
            if (left <= 0)
                return left == 0;
        }
    }

private:
    FILE* file;
    int left = 0, held = 0;
    uint32_t store = 0;
};

} // namespace

// How many pixels the codes stand for, up to `wanted`. `end`: what stopped it, as Next says, 0 for
// the end code and -3 for a code that cannot be.
static int64_t CountGifPixels(GifCodes* codes, int firstBits, int64_t wanted, int* end)
{
    const int clear = 1 << firstBits, stop = clear + 1, kMost = 4096;
    int lengths[kMost] = {}, bits = firstBits + 1, next = stop + 1, last = -1;
    std::fill_n(lengths, clear, 1);
    int64_t pixels = 0;
    while (pixels < wanted)
    {
        const int code = codes->Next(bits);
        *end = code == stop ? 0 : code < 0 ? code : -3;
        if (code == clear)
        {
            bits = firstBits + 1;
            next = stop + 1;
            last = -1;
            continue;
        }
        if (code < 0 || code == stop || code > next || (code == next && last < 0) || code >= kMost)
            break;
        if (last >= 0 && next < kMost)
            lengths[next++] = lengths[last] + 1;
        if (code >= clear && code >= next)
            break;
        pixels += lengths[code];
        last = code;
        if (next == 1 << bits && bits < 12)
            ++bits;
    }
    return pixels;
}

// Whether the pieces of the file go on to its end mark.
static bool HasGifEnd(FILE* file)
{
    for (int kind = std::fgetc(file); kind != 0x3B; kind = std::fgetc(file))
    {
        uint8_t frame[10]; // left, top, width, height, flags, bits
        if (kind == 0x2C)
        {
            if (std::fread(frame, 9, 1, file) != 1)
                return false;
            const long colours = frame[8] & 0x80 ? 3L << ((frame[8] & 7) + 1) : 0;
            if (std::fseek(file, colours + 1, SEEK_CUR) != 0)
                return false;
        }
        else if (kind != 0x21 || std::fgetc(file) == EOF)
            return false;
        if (!GifCodes(file).SkipRest())
            return false;
    }
    return true;
}

void CheckGifPixels(Decoding* decoding)
{
    int width = 0, height = 0;
    if (!GifFrameSize(decoding->file, &width, &height)) // leaves it behind the size
        return;
    const int flags = std::fgetc(decoding->file);
    if (flags & 0x80)
        std::fseek(decoding->file, 3L << ((flags & 7) + 1), SEEK_CUR);
    const int bits = std::fgetc(decoding->file);
    if (flags == EOF || bits < 1 || bits > 8)
        return NoteDamage(decoding, bits == EOF ? EndText(0.0) : "the pixels have no valid start",
                          0.0);
    GifCodes codes(decoding->file);
    const int64_t wanted = int64_t(width) * height;
    int end = 0;
    const int64_t pixels = CountGifPixels(&codes, bits, wanted, &end);
    const double share = double(pixels) / double(std::max<int64_t>(wanted, 1));
    if (pixels < wanted)
        NoteDamage(decoding, end == -2 ? EndText(share) : "the picture's data are broken", share);
    else if (!codes.SkipRest() || !HasGifEnd(decoding->file))
        NoteDamage(decoding, EndText(1.0), 1.0);
}

struct PnmHeader
{
    bool known = false;
    int kind = 0; // the digit behind the P
    int64_t width = 0, height = 0, top = 1;
};

// The next number, after spaces and comments; -1 for none.
static int64_t PnmNumber(FILE* file)
{
    int letter = std::fgetc(file);
    for (; letter == '#' || letter == ' ' || (letter >= '\t' && letter <= '\r');
         letter = std::fgetc(file))
        while (letter == '#')
            for (letter = std::fgetc(file); letter != '\n' && letter != EOF;)
                letter = std::fgetc(file);
    if (letter < '0' || letter > '9')
        return -1;
    int64_t number = 0;
    for (; letter >= '0' && letter <= '9'; letter = std::fgetc(file))
        number = std::min<int64_t>(number * 10 + (letter - '0'), INT32_MAX);
    return number; // and the one letter behind it is gone
}

static PnmHeader ReadPnmHeader(FILE* file)
{
    PnmHeader pnm;
    std::rewind(file);
    if (std::fgetc(file) != 'P')
        return pnm;
    pnm.kind = std::fgetc(file) - '0';
    pnm.width = PnmNumber(file);
    pnm.height = PnmNumber(file);
    if (pnm.kind != 1 && pnm.kind != 4)
        pnm.top = PnmNumber(file);
    pnm.known = pnm.kind >= 1 && pnm.kind <= 6 && pnm.width > 0 && pnm.height > 0 && pnm.top > 0 &&
                pnm.top <= 0xFFFF;
    return pnm;
}

static bool IsWritten(const PnmHeader& pnm) // as numbers
{
    return pnm.kind <= 3;
}

static int64_t SamplesOf(const PnmHeader& pnm)
{
    return pnm.width * pnm.height * (pnm.kind % 3 == 0 ? 3 : 1);
}

SimpleClaim FindPnmClaim(FILE* file)
{
    const PnmHeader pnm = ReadPnmHeader(file);
    SimpleClaim found;
    found.known = pnm.known;
    if (!pnm.known)
        return found;
    found.claim.width = pnm.width;
    found.claim.height = pnm.height;
    found.claim.components = pnm.kind % 3 == 0 ? 3 : 1;
    found.claim.bits = pnm.top > 255 ? 16 : 8;
    if (pnm.width > INT32_MAX / 8 || pnm.height > INT32_MAX / 8)
        return found;
    const int64_t samples = SamplesOf(pnm);
    found.claim.decoderBytes = samples * found.claim.bits / 8;
    const int64_t separated = pnm.kind == 1 ? samples : 2 * samples - 1;
    const int64_t packed =
        pnm.kind == 4 ? (pnm.width + 7) / 8 * pnm.height : samples * found.claim.bits / 8;
    found.claim.leastFileBytes =
        TellFile(file) - (IsWritten(pnm) ? 1 : 0) + (IsWritten(pnm) ? separated : packed);
    return found;
}

void CheckPnmPixels(Decoding* decoding)
{
    const PnmHeader pnm = ReadPnmHeader(decoding->file);
    if (!IsWritten(pnm))
        return;
    const int64_t samples = SamplesOf(pnm);
    int64_t found = 0;
    if (pnm.kind == 1) // bits need nothing between them
        for (int letter = std::fgetc(decoding->file); letter != EOF && found < samples;
             letter = std::fgetc(decoding->file))
            found += letter == '0' || letter == '1';
    else
        while (found < samples && PnmNumber(decoding->file) >= 0)
            ++found;
    const double share = double(found) / double(samples);
    if (found < samples)
        NoteDamage(decoding, std::feof(decoding->file) ? EndText(share) : "a sample is no number",
                   share);
}
