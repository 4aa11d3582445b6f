#include "fuzz/FuzzTarget.h"

#include "files/FileHeaders.h"

#include <cstdio>

// What the program reads of a picture file by itself, whatever kind of file it is.

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    FILE* stream = fmemopen(const_cast<uint8_t*>(data), size, "rb");
    Promise(stream);
    int width = -1, height = -1;
    if (GifFrameSize(stream, &width, &height))
        Promise(width >= 0 && width <= 0xFFFF && height >= 0 && height <= 0xFFFF);
    std::vector<uint8_t> packed;
    if (FindPngProfile(stream, &packed))
        Promise(!packed.empty() && packed.size() < size);
    TiffNumber(stream, kTiffOrientation);
    JpegOrientation(stream);
    PngChunksFit(stream);
    LooksLikeRaw(stream);
    std::vector<uint8_t> exif = SoundJpegExif(stream);
    Promise(exif.empty() || (exif.size() < size && exif[0] == 'E'));
    if (!exif.empty())
        SetExifUpright(&exif);
    for (const auto mask : {MaskedBmpHeader, MaskedExif, MaskedTiffEntries, MaskedPngProfiles})
    {
        long last = -1;
        for (const MaskedByte& byte : mask(stream))
        {
            Promise(byte.offset > last && size_t(byte.offset) < size);
            last = byte.offset;
        }
    }
    std::fclose(stream);
    return 0;
}
