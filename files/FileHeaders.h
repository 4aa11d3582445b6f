#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
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

// Whether the chunks of a PNG stream are no longer than the file, those with pixels apart, which
// may be cut off. The PNG library takes and clears as much memory as a chunk claims.
bool PngChunksFit(FILE* stream);

// The number that stands under a tag in the first directory of a TIFF stream, or -1.
int TiffNumber(FILE* stream, int tag);

// Photometric interpretation 0: zero means white. FreeImage knows this for 8 bits, where it makes a
// palette of it, but forgets it for 16.
constexpr int kTiffPhotometric = 262;
constexpr int kTiffOrientation = 274; // see Orientation.h; EXIF has the same tag

// Whether the file begins like a camera raw file that cameras of the last twenty years write: only
// those are handed to the raw library, which else tries decoders of long gone makers on anything.
bool LooksLikeRaw(FILE* stream);

// The EXIF block of a JPEG stream from its first letter on, as SaveExtras::exif takes it. Empty
// when there is none whose first directory lies inside of it.
std::vector<uint8_t> SoundJpegExif(FILE* stream);

// The orientation that this block gives, or 1.
int JpegOrientation(FILE* stream);

// The same of a block that may lack the first six letters, and of XMP.
int ExifOrientation(const uint8_t* block, size_t bytes);
int XmpOrientation(const std::string& xmp);

// Makes such a block say that the picture is upright. If it said otherwise the small preview
// picture is left behind, since it would lie on its side.
void SetExifUpright(std::vector<uint8_t>* exif);

// A byte of a file that FreeImage sees as another one.
struct MaskedByte
{
    long offset;
    uint8_t shown;
};

// What of a file is kept from FreeImage, in ascending order. It reads most of these things behind
// the ends of their buffers, and nothing of them is needed:
//
// EXIF of JPEG and WebP streams, whose directories it takes on trust. JPEG results get the block
// itself (SoundJpegExif), other formats hold none.
std::vector<MaskedByte> MaskedExif(FILE* stream);
// All entries of a TIFF stream but those that pixels, profile and XMP need: captions, for one, are
// counted in units of four bytes by it, but in bytes by the TIFF library.
std::vector<MaskedByte> MaskedTiffEntries(FILE* stream);
// The length of a BMP stream's header, when it is one of the longer kinds: FreeImage knows only the
// first, which they all begin with, and looks for the palette behind it; so it is shown there. The
// pixels begin behind header and palette: they are not touched.
std::vector<MaskedByte> MaskedBmpHeader(FILE* stream);
// Profiles of a PNG stream: the PNG library unpacks them to any size that they claim, and then
// FreeImage does not find them (see FindPngProfile).
std::vector<MaskedByte> MaskedPngProfiles(FILE* stream);
