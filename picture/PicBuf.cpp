#include "picture/PicBuf.h"

#include "base/LargeBlocks.h"
#include "picture/PicColor.h"
#include "picture/PicConvert.h"
#include "picture/PicTransform.h"

#include <algorithm>
#include <cstring>

// Calls fn with a null pointer of the picture's sample type, so that one generic body serves all
// three depths. False for any other depth.
template <typename Fn>
static bool WithSampleType(int bitsPerComponent, Fn fn)
{
    switch (bitsPerComponent)
    {
    case 8: fn(static_cast<uint8_t*>(nullptr)); return true;
    case 16: fn(static_cast<uint16_t*>(nullptr)); return true;
    case 32: fn(static_cast<float*>(nullptr)); return true;
    default: return false;
    }
}

static int PixelBytes(const SBxPicBuf& picture)
{
    return picture.components * (picture.bitsPerComponent / 8);
}

int64_t PictureBytes(int width, int height, int components, int bitsPerComponent)
{
    if (width < 1 || height < 1 || components < 1 || components > 4)
        return -1;
    if (bitsPerComponent != 8 && bitsPerComponent != 16 && bitsPerComponent != 32)
        return -1;
    const int64_t stride = int64_t(width) * components * (bitsPerComponent / 8);
    if (stride > INT32_MAX)
        return -1;
    const int64_t size = stride * height;
    return size > INT32_MAX ? -1 : size;
}

void CBxPicBufAPI::Init(SBxPicBuf* buffer)
{
    *buffer = SBxPicBuf{};
}

void CBxPicBufAPI::ReinitHeap(SBxPicBuf* buffer, int width, int height, int components,
                              int bitsPerComponent)
{
    const int64_t size = PictureBytes(width, height, components, bitsPerComponent);
    if (size < 0)
    {
        DoneHeap(buffer);
        return;
    }
    // Tools call this before every run with the geometry they already have: keep the block.
    if (!buffer->data || buffer->size != size)
    {
        VcFreeBlock(buffer->data, size_t(buffer->size));
        buffer->data = static_cast<uint8_t*>(VcAllocBlock(size_t(size), false));
        if (!buffer->data)
        {
            Init(buffer);
            return;
        }
    }
    buffer->size = int32_t(size);
    buffer->stride = int32_t(size / height);
    buffer->width = width;
    buffer->height = height;
    buffer->components = components;
    buffer->bitsPerComponent = bitsPerComponent;
}

void CBxPicBufAPI::ReinitHeap(SBxPicBuf* dst, const SBxPicBuf& like)
{
    ReinitHeap(dst, like.width, like.height, like.components, like.bitsPerComponent);
}

void CBxPicBufAPI::DoneHeap(SBxPicBuf* buffer)
{
    VcFreeBlock(buffer->data, size_t(buffer->size));
    Init(buffer);
}

void CBxPicBufAPI::Copy(SBxPicBuf* dst, const SBxPicBuf& src)
{
    CopyRect(dst, src, {0, 0}, {0, 0}, {src.width, src.height});
}

void CBxPicBufAPI::Copy(SBxPicBuf* dst, const SBxPicBuf& src, const CBxRect<int>& rect)
{
    const CBxPoint<int> origin = {rect.left, rect.top};
    CopyRect(dst, src, origin, origin, {rect.right - rect.left, rect.bottom - rect.top});
}

void CBxPicBufAPI::CopyRect(SBxPicBuf* dst, const SBxPicBuf& src, const CBxPoint<int>& dstOrigin,
                            const CBxPoint<int>& srcOrigin, const CBxSize<int>& size)
{
    if (size.cx <= 0 || size.cy <= 0)
        return;
    const size_t pixelBytes = size_t(PixelBytes(src));
    const size_t rowBytes = pixelBytes * size_t(size.cx);
    uint8_t* to = PicRow<uint8_t>(*dst, dstOrigin.y) + dstOrigin.x * pixelBytes;
    const uint8_t* from = PicRow<uint8_t>(src, srcOrigin.y) + srcOrigin.x * pixelBytes;
    if (rowBytes == size_t(dst->stride) && rowBytes == size_t(src.stride))
    {
        std::memcpy(to, from, rowBytes * size_t(size.cy));
        return;
    }
    for (int y = 0; y < size.cy; ++y, to += dst->stride, from += src.stride)
        std::memcpy(to, from, rowBytes);
}

bool CBxPicBufAPI::ExtractComponent(SBxPicBuf* dst, unsigned index, const SBxPicBuf& src)
{
    if (index >= unsigned(src.components))
        return false;
    return WithSampleType(src.bitsPerComponent,
                          [&](auto* type)
                          {
                              using T = std::remove_pointer_t<decltype(type)>;
                              const int step = src.components;
                              for (int y = 0; y < src.height; ++y)
                              {
                                  T* to = PicRow<T>(*dst, y);
                                  const T* from = PicRow<const T>(src, y) + index;
                                  for (int x = 0; x < src.width; ++x)
                                      to[x] = from[x * step];
                              }
                          });
}

bool CBxPicBufAPI::InsertComponent(SBxPicBuf* dst, unsigned index, const SBxPicBuf& plane)
{
    if (index >= unsigned(dst->components))
        return false;
    return WithSampleType(dst->bitsPerComponent,
                          [&](auto* type)
                          {
                              using T = std::remove_pointer_t<decltype(type)>;
                              const int step = dst->components;
                              for (int y = 0; y < dst->height; ++y)
                              {
                                  T* to = PicRow<T>(*dst, y) + index;
                                  const T* from = PicRow<const T>(plane, y);
                                  for (int x = 0; x < dst->width; ++x)
                                      to[x * step] = from[x];
                              }
                          });
}

void CBxPicBufAPI::SetConst(SBxPicBuf* buffer, unsigned char value)
{
    SetConst(buffer, {0, 0, buffer->width, buffer->height}, value);
}

void CBxPicBufAPI::SetConst(SBxPicBuf* buffer, const CBxRect<int>& rect, unsigned char value)
{
    if (rect.right <= rect.left)
        return;
    WithSampleType(buffer->bitsPerComponent,
                   [&](auto* type)
                   {
                       using T = std::remove_pointer_t<decltype(type)>;
                       const int64_t count = int64_t(rect.right - rect.left) * buffer->components;
                       for (int y = rect.top; y < rect.bottom; ++y)
                           std::fill_n(PicRow<T>(*buffer, y) +
                                           int64_t(rect.left) * buffer->components,
                                       count, T(value));
                   });
}

bool CBxPicBufAPI::ConvertBpcComp(SBxPicBuf* buffer, unsigned bitsPerComponent, unsigned components)
{
    return ConvertPicture(buffer, bitsPerComponent, components);
}

bool CBxPicBufAPI::ConvertRGBtoYUV(SBxPicBuf* dst, const SBxPicBuf& src)
{
    return RgbToYuv(dst, src);
}

bool CBxPicBufAPI::ConvertYUVtoRGB(SBxPicBuf* dst, const SBxPicBuf& src)
{
    return YuvToRgb(dst, src);
}

void CBxPicBufAPI::TransformConstantFast(SBxPicBuf* dst, const SBxPicBuf& src, const CBxPicMap& map)
{
    TransformNearest(dst, src, map);
}

void CBxPicBufAPI::TransformBilinearFast(SBxPicBuf* dst, const SBxPicBuf& src, const CBxPicMap& map)
{
    TransformBilinear(dst, src, map);
}

void CBxPicBufAPI::TransformBicubicFast(SBxPicBuf* dst, const SBxPicBuf& src, const CBxPicMap& map)
{
    TransformBicubic(dst, src, map);
}
