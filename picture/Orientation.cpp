#include "picture/Orientation.h"

#include "base/ParallelRows.h"
#include "picture/Picture.h"

#include <algorithm>
#include <cstring>

// Where the pixels of the upright picture come from: its first one, and steps along its rows and
// columns, in bytes.
struct Walk
{
    int64_t first, alongRow, alongColumn;
};

static Walk WalkOf(const SBxPicBuf& picture, int orientation)
{
    const int64_t pixel = int64_t(picture.components) * picture.bitsPerComponent / 8;
    const int64_t row = picture.stride;
    const int64_t right = (picture.width - 1) * pixel, bottom = (picture.height - 1) * row;
    switch (orientation)
    {
    case 2: return {right, -pixel, row};
    case 3: return {right + bottom, -pixel, -row};
    case 4: return {bottom, pixel, -row};
    case 5: return {0, row, pixel};
    case 6: return {bottom, -row, pixel};
    case 7: return {right + bottom, -row, -pixel};
    default: return {right, row, -pixel};
    }
}

template <int Bytes>
static void CopyPixels(SBxPicBuf* upright, const SBxPicBuf& picture, const Walk& walk)
{
    // Squares, since one of the two pictures is walked through by columns.
    constexpr int kSide = 32;
    const int squares = (upright->height + kSide - 1) / kSide;
    VcParallelRows(
        squares, upright->width * kSide,
        [&](int firstSquare, int endSquare)
        {
            const int endRow = std::min(endSquare * kSide, upright->height);
            for (int top = firstSquare * kSide; top < endRow; top += kSide)
                for (int left = 0; left < upright->width; left += kSide)
                    for (int y = top; y < std::min(top + kSide, endRow); ++y)
                    {
                        uint8_t* to = PicRow<uint8_t>(*upright, y) + int64_t(left) * Bytes;
                        const uint8_t* from =
                            picture.data + walk.first + y * walk.alongColumn + left * walk.alongRow;
                        const int count = std::min(kSide, upright->width - left);
                        for (int x = 0; x < count; ++x, to += Bytes, from += walk.alongRow)
                            std::memcpy(to, from, Bytes);
                    }
        });
}

Outcome MakeUpright(SBxPicBuf* picture, int orientation)
{
    if (!picture->data || orientation < 2 || orientation > 8)
        return Outcome::Done;
    const bool sideways = orientation >= 5;
    Picture upright(sideways ? picture->height : picture->width,
                    sideways ? picture->width : picture->height, picture->components,
                    picture->bitsPerComponent);
    if (upright.Empty())
        return Outcome::Failed;
    const Walk walk = WalkOf(*picture, orientation);
    switch (picture->components * picture->bitsPerComponent / 8)
    {
    case 1: CopyPixels<1>(upright.Record(), *picture, walk); break;
    case 2: CopyPixels<2>(upright.Record(), *picture, walk); break;
    case 3: CopyPixels<3>(upright.Record(), *picture, walk); break;
    default: CopyPixels<6>(upright.Record(), *picture, walk); break;
    }
    CBxPicBufAPI::DoneHeap(picture);
    *picture = upright.Release();
    return Outcome::Done;
}
