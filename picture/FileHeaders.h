#pragma once

#include <cstdint>
#include <cstdio>
#include <vector>

// What FreeImage 3.18 does not tell about a file, read from the file's own bytes. All of these take
// streams that may hold anything, and leave them at any position.

// Size of the first frame of a GIF stream, which is what a decoder allocates for; the screen size
// in the file's first bytes may differ. False when there is no frame. FreeImage has no way to ask
// for a GIF's size without decoding it.
bool GifFrameSize(FILE* stream, int* width, int* height);

// The colour profile of a PNG stream as it stands in the file, packed by zlib; false when there is
// none. FreeImage asks its PNG library for it with a null pointer and gets nothing.
bool FindPngProfile(FILE* stream, std::vector<uint8_t>* packed);

// Whether zero means white in the first picture of a TIFF stream. FreeImage knows this for 8 bits,
// where it makes a palette of it, but forgets it for 16.
bool TiffCountsFromWhite(FILE* stream);

// Captions (IPTC) of a TIFF stream, as offsets of the bytes of their entries' tags. FreeImage
// counts them in units of four bytes, the TIFF library in bytes: it reads four times as much as
// there is, and turns the bytes of that round when the file's order is not the machine's.
std::vector<long> FindTiffCaptions(FILE* stream);

// Whether the file begins like a camera raw file that cameras of the last twenty years write: only
// those are handed to the raw library, which else tries decoders of long gone makers on anything.
bool LooksLikeRaw(FILE* stream);

// EXIF blocks of a JPEG stream, as offsets from the start of the file to their first letter. With
// `damagedOnly` those alone whose first directory does not fit into the block: FreeImage takes the
// directory's size on trust, and reads far behind the end of the block.
std::vector<long> FindJpegExif(FILE* stream, bool damagedOnly);
