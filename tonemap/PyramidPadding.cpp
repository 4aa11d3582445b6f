#include "tonemap/PyramidPadding.h"

#include <algorithm>
#include <cmath>
#include <cstring>

int PaddedSide(int side, int levels)
{
    const int block = 1 << levels;
    return int(std::ceil(float(side) / float(block) + 1.0f) * float(block));
}

template <typename T>
static void ReplicateEdges(SBxPicBuf* buffer, int width, int height)
{
    const int components = buffer->components;
    for (int y = 0; y < height; ++y)
    {
        T* row = PicRow<T>(*buffer, y);
        for (int i = width * components; i < buffer->width * components; ++i)
            row[i] = row[i - components];
    }
    for (int y = height; y < buffer->height; ++y)
        std::memcpy(PicRow<T>(*buffer, y), PicRow<T>(*buffer, y - 1),
                    size_t(buffer->width) * size_t(components) * sizeof(T));
}

void ReplicateEdges8(SBxPicBuf* buffer, int width, int height)
{
    ReplicateEdges<uint8_t>(buffer, width, height);
}

void ReplicateEdges16(SBxPicBuf* buffer, int width, int height)
{
    ReplicateEdges<uint16_t>(buffer, width, height);
}

// Rows of the padded picture; below the picture, its last one again.
static void PadRows(SBxPicBuf* padded, const SBxPicBuf& picture, int first, int end)
{
    for (int y = first; y < end; ++y)
    {
        SBxPicBuf row = *padded;
        row.data += int64_t(y) * padded->stride;
        row.height = 1;
        const int from = std::min(y, picture.height - 1);
        CBxPicBufAPI::CopyRect(&row, picture, {0, 0}, {0, from}, {picture.width, 1});
        if (picture.bitsPerComponent == 8)
            ReplicateEdges8(&row, picture.width, 1);
        else
            ReplicateEdges16(&row, picture.width, 1);
    }
}

Outcome PadForPyramid(SBxPicBuf* padded, const SBxPicBuf& picture, int levels,
                      const RunControl& control)
{
    CBxPicBufAPI::ReinitHeap(padded, PaddedSide(picture.width, levels),
                             PaddedSide(picture.height, levels), picture.components,
                             picture.bitsPerComponent);
    if (!padded->data)
        return Outcome::Failed;
    return RunInRows(padded->height, padded->width * padded->components, control,
                     [&](int first, int end) { PadRows(padded, picture, first, end); });
}
