#pragma once

#include "base/Geometry.h"

#include <cstdint>

class CBxPicMap;

// The one picture record of the system. A plain header over a block of samples, copied by value
// wherever a header is handed on; it has no constructor, so call CBxPicBufAPI::Init before any
// other use.
//
// Samples of a pixel are interleaved; three components are blue, green, red in memory, for 8 and
// 16 bits alike (component 0 is blue). After ConvertRGBtoYUV they are Y, U, V. Rows run from top
// to bottom without any padding: stride = width * components * bytes per sample and
// size = stride * height, and several callers write rows back to back because of it.
//
// 32-bit samples are floats on the scale of the integers that they came from (8-bit 200 is 200.0f,
// 16-bit 65535 is 65535.0f), never 0..1.
//
// A record either owns its block (ReinitHeap made it, DoneHeap frees it) or is a wrapper which a
// caller filled by hand over memory of its own. A wrapper never goes to ReinitHeap or DoneHeap;
// everything else works on it, with a stride larger than the packed one too. Because headers are
// copied by value, exactly one of the copies may be freed.
struct SBxPicBuf
{
    uint8_t* data;            // first byte of the top row; null = empty record
    int32_t size;             // bytes of the whole block
    int32_t stride;           // bytes from one row to the next
    int32_t width;            // pixels per row
    int32_t height;           // rows
    int32_t components;       // samples per pixel: 1 or 3
    int32_t bitsPerComponent; // 8 or 16: unsigned integers, 32: float
};

// Row y of a picture as samples of type T (uint8_t, uint16_t or float).
template <typename T>
inline T* PicRow(const SBxPicBuf& picture, int y)
{
    return reinterpret_cast<T*>(picture.data + int64_t(y) * picture.stride);
}

// A number as the nearest sample of an integer type: halves go up, what lies outside of the range
// becomes its end, and what is not a number 0.
template <typename T>
inline T NearestSample(float value)
{
    constexpr float top = float((1u << (8 * sizeof(T))) - 1);
    const float lifted = value > 0.0f ? value : 0.0f; // a NaN compares false
    return T((lifted < top ? lifted : top) + 0.5f);
}

// Bytes of a block of that geometry, or -1 when it is not a picture that the record can describe
// (a side below 1, 31 bits exceeded, components not 1 or more, bits not 8, 16 or 32).
int64_t PictureBytes(int width, int height, int components, int bitsPerComponent);

// Operations on pictures. All are static, keep no shared state and may run on any thread as long
// as no buffer is written by two threads at once. Geometry that does not match what an operation
// asks for is an error of the caller. bool results are true on success; an operation that cannot
// do what is asked (allocation, unknown sample type) returns false and leaves its buffers alone.
class CBxPicBufAPI
{
public:
    // Makes the record empty. No allocation, no release.
    static void Init(SBxPicBuf* buffer);

    // (Re)allocates the block; contents are undefined. An old block is freed first unless it has
    // the right size already. When memory is short, or the geometry's byte size does not fit the
    // record's 31 bits, the record is left empty: test data for null.
    static void ReinitHeap(SBxPicBuf* buffer, int width, int height, int components,
                           int bitsPerComponent);
    static void ReinitHeap(SBxPicBuf* dst, const SBxPicBuf& like);

    // Frees an owned block and makes the record empty. Does nothing to an empty record.
    static void DoneHeap(SBxPicBuf* buffer);

    // Copies all pixels, or those inside the rectangle (same coordinates in both). Same
    // components and bits; the whole-picture copy also wants the same size.
    static void Copy(SBxPicBuf* dst, const SBxPicBuf& src);
    static void Copy(SBxPicBuf* dst, const SBxPicBuf& src, const CBxRect<int>& rect);

    // Copies a block of size pixels from srcOrigin to dstOrigin; note the destination comes first.
    static void CopyRect(SBxPicBuf* dst, const SBxPicBuf& src, const CBxPoint<int>& dstOrigin,
                         const CBxPoint<int>& srcOrigin, const CBxSize<int>& size);

    // One component of src into the one-component plane dst and back; same size and bits.
    [[nodiscard]] static bool ExtractComponent(SBxPicBuf* dst, unsigned index,
                                               const SBxPicBuf& src);
    [[nodiscard]] static bool InsertComponent(SBxPicBuf* dst, unsigned index,
                                              const SBxPicBuf& plane);

    // Converts in place, reallocating as needed. Any of 8, 16, 32 bits to any other, and 1 to 3 or
    // 3 to 1 components; both may change in one call. 16 to 8 bits divides by 256; float to
    // integer rounds half up, clamps to the range and takes NaN as 0; 3 to 1 takes Rec. 601 luma;
    // 1 to 3 repeats the sample; 8 to 16 bits multiplies by 257, so that white stays white.
    // Mind the order: bits first here, but components first in ReinitHeap.
    [[nodiscard]] static bool ConvertBpcComp(SBxPicBuf* buffer, unsigned bitsPerComponent,
                                             unsigned components);

    // Blue, green, red to Y, U, V (full-range Rec. 601 as JFIF has it, chroma centred on half the
    // range) and back. Same size and bits, dst already allocated; dst may be src. The pair is an
    // inverse within one step of the sample type.
    [[nodiscard]] static bool ConvertRGBtoYUV(SBxPicBuf* dst, const SBxPicBuf& src);
    [[nodiscard]] static bool ConvertYUVtoRGB(SBxPicBuf* dst, const SBxPicBuf& src);

    // Sets every sample (inside the rectangle) to value; a 16-bit sample becomes 0x00vv.
    static void SetConst(SBxPicBuf* buffer, unsigned char value);
    static void SetConst(SBxPicBuf* buffer, const CBxRect<int>& rect, unsigned char value);

    // Fill dst by resampling src through the map: nearest sample, bilinear, Catmull-Rom bicubic.
    // Each destination pixel's centre is mapped into src; those that fall outside of it keep what
    // they held. Same components and bits in both, 8 or 16 bits. At scale 1 the shift is taken in
    // whole pixels, so that the picture shows exactly.
    static void TransformConstantFast(SBxPicBuf* dst, const SBxPicBuf& src, const CBxPicMap& map);
    static void TransformBilinearFast(SBxPicBuf* dst, const SBxPicBuf& src, const CBxPicMap& map);
    static void TransformBicubicFast(SBxPicBuf* dst, const SBxPicBuf& src, const CBxPicMap& map);
};
