#include "view/ViewCache.h"

#include "base/ParallelRows.h"

#include <cstring>

// A tool makes its preview anew at every move of a slider, and the cache with it: the usual
// pictures are therefore converted on the way, without a copy at their full depth in between.

static void ReduceRow(uint8_t* to, const uint8_t* from, int64_t count)
{
    std::memcpy(to, from, size_t(count));
}

static void ReduceRow(uint8_t* to, const uint16_t* from, int64_t count)
{
    for (int64_t i = 0; i < count; ++i)
        to[i] = uint8_t(from[i] >> 8);
}

template <typename T>
static void RepeatRow(uint8_t* to, const T* from, int width)
{
    constexpr int shift = 8 * (sizeof(T) - 1);
    for (int x = 0; x < width; ++x, to += 3)
        to[0] = to[1] = to[2] = uint8_t(from[x] >> shift);
}

template <typename T>
static void CacheRows(SBxPicBuf* cache, const SBxPicBuf& picture)
{
    VcParallelRows(picture.height, picture.width * cache->components,
                   [&](int firstRow, int endRow)
                   {
                       for (int y = firstRow; y < endRow; ++y)
                       {
                           uint8_t* to = PicRow<uint8_t>(*cache, y);
                           const T* from = PicRow<const T>(picture, y);
                           if (picture.components == cache->components)
                               ReduceRow(to, from, int64_t(picture.width) * cache->components);
                           else
                               RepeatRow(to, from, picture.width);
                       }
                   });
}

static Outcome ConvertedCopy(Picture* cache, const SBxPicBuf& picture, int components)
{
    CBxPicBufAPI::ReinitHeap(cache->Record(), picture);
    if (cache->Empty())
        return Outcome::Failed;
    CBxPicBufAPI::Copy(cache->Record(), picture);
    const bool done = CBxPicBufAPI::ConvertBpcComp(cache->Record(), 8, unsigned(components));
    if (!done)
        cache->Free();
    return FailedIf(!done);
}

Outcome RebuildViewCache(Picture* cache, const SBxPicBuf* picture, int components)
{
    if (!picture || !picture->data)
    {
        cache->Free();
        return Outcome::Failed;
    }
    if (picture->bitsPerComponent > 16 || picture->components > components)
        return ConvertedCopy(cache, *picture, components);
    CBxPicBufAPI::ReinitHeap(cache->Record(), picture->width, picture->height, components, 8);
    if (cache->Empty())
        return Outcome::Failed;
    if (picture->bitsPerComponent == 8)
        CacheRows<uint8_t>(cache->Record(), *picture);
    else
        CacheRows<uint16_t>(cache->Record(), *picture);
    return Outcome::Done;
}
