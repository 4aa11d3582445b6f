#include "picture/GifHeader.h"

#include <cstdint>

// Bytes of a colour table whose size is coded in the flags of the block before it.
static long ColourTableBytes(uint8_t flags)
{
    return flags & 0x80 ? 3L << ((flags & 7) + 1) : 0;
}

// Extensions: a label, then counted pieces up to an empty one.
static bool SkipExtension(FILE* stream)
{
    int count = std::fgetc(stream) == EOF ? EOF : std::fgetc(stream);
    while (count > 0)
    {
        if (std::fseek(stream, count, SEEK_CUR) != 0)
            return false;
        count = std::fgetc(stream);
    }
    return count == 0;
}

bool GifFrameSize(FILE* stream, int* width, int* height)
{
    uint8_t screen[13]; // signature, version, screen size, flags, background, aspect
    std::rewind(stream);
    if (std::fread(screen, sizeof screen, 1, stream) != 1 ||
        std::fseek(stream, ColourTableBytes(screen[10]), SEEK_CUR) != 0)
        return false;
    for (;;)
    {
        const int kind = std::fgetc(stream);
        if (kind == 0x21)
        {
            if (!SkipExtension(stream))
                return false;
            continue;
        }
        uint8_t frame[8]; // left, top, width, height
        if (kind != 0x2C || std::fread(frame, sizeof frame, 1, stream) != 1)
            return false;
        *width = frame[4] | frame[5] << 8;
        *height = frame[6] | frame[7] << 8;
        return true;
    }
}
