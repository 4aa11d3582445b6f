#include "multiscale/Pyramid.h"

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

bool PadForPyramid(SBxPicBuf* padded, const SBxPicBuf& picture, int levels)
{
    CBxPicBufAPI::ReinitHeap(padded, PaddedSide(picture.width, levels),
                             PaddedSide(picture.height, levels), picture.components,
                             picture.bitsPerComponent);
    if (!padded->data)
        return true;
    std::memset(padded->data, 255, size_t(padded->size));
    CBxPicBufAPI::CopyRect(padded, picture, {0, 0}, {0, 0}, {picture.width, picture.height});
    if (picture.bitsPerComponent == 8)
        ReplicateEdges8(padded, picture.width, picture.height);
    else
        ReplicateEdges16(padded, picture.width, picture.height);
    return false;
}
