#pragma once

#include "picture/PicBuf.h"

#include <utility>

// The owner of a picture's block: it frees what its record holds, on every way out. It moves and
// does not copy, so that nobody has to remember which of two equal headers is the one to be freed.
//
// It reads as its record wherever one is only looked at. Operations that fill a record take
// Record(); what they put there belongs to the picture. A header copied out of it is a wrapper and
// good for as long as the picture keeps its block.
class Picture
{
public:
    Picture() = default;

    // A block with undefined contents; empty when memory is short or no record can describe it.
    Picture(int width, int height, int components, int bitsPerComponent)
    {
        CBxPicBufAPI::ReinitHeap(&record, width, height, components, bitsPerComponent);
    }

    // The same with another picture's geometry.
    [[nodiscard]] static Picture Like(const SBxPicBuf& other)
    {
        return Picture(other.width, other.height, other.components, other.bitsPerComponent);
    }

    // Takes over a block that the caller has owned until now.
    [[nodiscard]] static Picture Owning(const SBxPicBuf& owned)
    {
        Picture picture;
        picture.record = owned;
        return picture;
    }

    Picture(Picture&& other) noexcept : record(other.Release()) {}
    Picture& operator=(Picture&& other) noexcept
    {
        if (this != &other)
        {
            Free();
            record = other.Release();
        }
        return *this;
    }
    ~Picture() { Free(); }

    operator const SBxPicBuf&() const { return record; }
    const SBxPicBuf* operator->() const { return &record; }
    SBxPicBuf* Record() { return &record; }
    const SBxPicBuf* Record() const { return &record; }

    bool Empty() const { return !record.data; }
    void Free() { CBxPicBufAPI::DoneHeap(&record); }

    // Hands the block to the caller, who owns it from then on.
    [[nodiscard]] SBxPicBuf Release() { return std::exchange(record, SBxPicBuf{}); }

private:
    SBxPicBuf record = {};
};
