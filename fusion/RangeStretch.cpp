#include "fusion/RangeStretch.h"

#include "base/ParallelRows.h"

static unsigned StretchedSample(unsigned v, unsigned lo, unsigned hi, unsigned max)
{
    if (v >= hi)
        return max;
    if (v < lo)
        return 0;
    return unsigned(double(v - lo) / double(hi - lo) * double(max));
}

// Every value is computed once into a table; pictures have far more samples than values.
template <typename T>
static void Stretch(SBxPicBuf* dst, const SBxPicBuf& src, unsigned lo, unsigned hi)
{
    constexpr unsigned values = 1u << (8 * sizeof(T));
    const unsigned max = (1u << src.bitsPerComponent) - 1;
    static thread_local T table[values];
    for (unsigned v = 0; v < values; ++v)
        table[v] = T(StretchedSample(v, lo, hi, max));

    const T* lookup = table; // the caller's table, whichever thread takes the rows
    const int samples = src.width * src.components;
    VcParallelRows(src.height, samples,
                   [&](int first, int end)
                   {
                       for (int y = first; y < end; ++y)
                       {
                           const T* from = PicRow<const T>(src, y);
                           T* to = PicRow<T>(*dst, y);
                           for (int x = 0; x < samples; ++x)
                               to[x] = lookup[from[x]];
                       }
                   });
}

bool VcStretchRange8(SBxPicBuf* dst, const SBxPicBuf& src, unsigned lo, unsigned hi)
{
    Stretch<uint8_t>(dst, src, lo, hi);
    return false;
}

bool VcStretchRange16(SBxPicBuf* dst, const SBxPicBuf& src, unsigned lo, unsigned hi)
{
    Stretch<uint16_t>(dst, src, lo, hi);
    return false;
}
