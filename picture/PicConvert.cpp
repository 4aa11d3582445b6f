#include "picture/PicConvert.h"

#include "picture/Picture.h"

#include <type_traits>

// One sample from one type to another; see ConvertBpcComp for the rules.
template <typename D, typename S>
static D ConvertSample(S sample)
{
    if constexpr (std::is_same_v<D, S>)
        return sample;
    else if constexpr (std::is_same_v<S, float>)
        return NearestSample<D>(sample);
    else if constexpr (std::is_same_v<D, float>)
        return float(sample);
    else if constexpr (sizeof(D) < sizeof(S))
        return D(sample >> 8);
    else
        return D(sample * 257);
}

// Rec. 601 luma of a blue, green, red pixel. The integer weights add up to 65536 exactly, so grey
// stays grey, and the largest 16-bit sum just fits 32 bits.
template <typename T>
static T Grey(const T* bgr)
{
    if constexpr (std::is_same_v<T, float>)
        return 0.114f * bgr[0] + 0.587f * bgr[1] + 0.299f * bgr[2];
    else
        return T((7471u * bgr[0] + 38470u * bgr[1] + 19595u * bgr[2] + 32768u) >> 16);
}

template <typename D, typename S>
static void ConvertRow(D* to, const S* from, int width, int toComponents, int fromComponents)
{
    if (toComponents == fromComponents)
    {
        const int64_t count = int64_t(width) * toComponents;
        for (int64_t i = 0; i < count; ++i)
            to[i] = ConvertSample<D>(from[i]);
    }
    else if (toComponents == 1)
    {
        for (int x = 0; x < width; ++x)
            to[x] = ConvertSample<D>(Grey(from + 3 * x));
    }
    else
    {
        for (int x = 0; x < width; ++x)
            to[3 * x] = to[3 * x + 1] = to[3 * x + 2] = ConvertSample<D>(from[x]);
    }
}

template <typename D>
static void ConvertTo(SBxPicBuf* dst, const SBxPicBuf& src)
{
    for (int y = 0; y < src.height; ++y)
    {
        D* to = PicRow<D>(*dst, y);
        const int width = src.width;
        if (src.bitsPerComponent == 8)
            ConvertRow(to, PicRow<const uint8_t>(src, y), width, dst->components, src.components);
        else if (src.bitsPerComponent == 16)
            ConvertRow(to, PicRow<const uint16_t>(src, y), width, dst->components, src.components);
        else
            ConvertRow(to, PicRow<const float>(src, y), width, dst->components, src.components);
    }
}

bool ConvertPicture(SBxPicBuf* buffer, unsigned bitsPerComponent, unsigned components)
{
    if (!buffer->data)
        return false;
    if (unsigned(buffer->bitsPerComponent) == bitsPerComponent &&
        unsigned(buffer->components) == components)
        return true;
    const bool known = components == unsigned(buffer->components) ||
                       (components == 1 && buffer->components == 3) ||
                       (components == 3 && buffer->components == 1);
    if (!known || PictureBytes(1, 1, int(components), int(bitsPerComponent)) < 0)
        return false;

    Picture converted(buffer->width, buffer->height, int(components), int(bitsPerComponent));
    if (converted.Empty())
        return false;
    if (bitsPerComponent == 8)
        ConvertTo<uint8_t>(converted.Record(), *buffer);
    else if (bitsPerComponent == 16)
        ConvertTo<uint16_t>(converted.Record(), *buffer);
    else
        ConvertTo<float>(converted.Record(), *buffer);
    CBxPicBufAPI::DoneHeap(buffer);
    *buffer = converted.Release();
    return true;
}
