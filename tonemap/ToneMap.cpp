#include "tonemap/ToneMap.h"

#include "base/ShortMemory.h"
#include "picture/ParallelCopy.h"
#include "picture/Picture.h"
#include "tonemap/Pyramid.h"
#include "tonemap/PyramidPadding.h"

#include <algorithm>

struct PlaneFilter
{
    int levels;
    ToneMapParams params;
    const RunControl* control;
    ToneMapMethod method;
};

// Rows [first, end) of a picture, as a picture of their own.
static SBxPicBuf RowsOf(const SBxPicBuf& picture, int first, int end)
{
    SBxPicBuf rows = picture;
    rows.data += int64_t(first) * picture.stride;
    rows.height = end - first;
    return rows;
}

// One component as floats on the 0..255 scale, and back by the rules of ConvertBpcComp.
template <typename T>
static void ComponentToFloat(const SBxPicBuf& plane, const SBxPicBuf& picture, int component)
{
    constexpr float kScale = sizeof(T) == 1 ? 1.0f : 0.00390625f;
    for (int y = 0; y < plane.height; ++y)
    {
        const T* from = PicRow<const T>(picture, y) + component;
        float* to = PicRow<float>(plane, y);
        for (int x = 0; x < plane.width; ++x)
            to[x] = float(from[x * picture.components]) * kScale;
    }
}

template <typename T>
static void FloatToComponent(const SBxPicBuf& picture, const SBxPicBuf& plane, int component)
{
    constexpr float kScale = sizeof(T) == 1 ? 1.0f : 256.0f;
    for (int y = 0; y < plane.height; ++y)
    {
        const float* from = PicRow<const float>(plane, y);
        T* to = PicRow<T>(picture, y) + component;
        for (int x = 0; x < plane.width; ++x)
            to[x * picture.components] = NearestSample<T>(from[x] * kScale);
    }
}

// Calls body with the same rows of two pictures, a few at a time.
template <typename Body>
static Outcome RunInPair(const SBxPicBuf& a, const SBxPicBuf& b, const RunControl& control,
                         Body body)
{
    return RunInRows(a.height, a.width * std::max(a.components, b.components), control,
                     [&](int first, int end)
                     { body(RowsOf(a, first, end), RowsOf(b, first, end)); });
}

// Filters a component of the padded picture in place, going through floats.
static Outcome FilterComponent(const SBxPicBuf& padded, int component, const PlaneFilter& filter)
{
    const RunControl& control = *filter.control;
    Picture floats(padded.width, padded.height, 1, 32);
    if (floats.Empty())
        return Outcome::Failed;
    const bool narrow = padded.bitsPerComponent == 8;
    const auto there = [=](const SBxPicBuf& picture, const SBxPicBuf& plane)
    {
        return narrow ? ComponentToFloat<uint8_t>(plane, picture, component)
                      : ComponentToFloat<uint16_t>(plane, picture, component);
    };
    const auto back = [=](const SBxPicBuf& picture, const SBxPicBuf& plane)
    {
        return narrow ? FloatToComponent<uint8_t>(picture, plane, component)
                      : FloatToComponent<uint16_t>(picture, plane, component);
    };
    const auto map = [&]
    {
        return ToneMapPlane(floats.Record(), floats, filter.levels, filter.params, control,
                            filter.method);
    };
    return InTurn([&] { return RunInPair(padded, floats, control, there); }, map,
                  [&] { return RunInPair(padded, floats, control, back); });
}

static Outcome FilterColours(const SBxPicBuf& padded, const PlaneFilter& filter, int planes)
{
    const auto toYuv = [](SBxPicBuf rows, const SBxPicBuf&)
    { (void)CBxPicBufAPI::ConvertRGBtoYUV(&rows, rows); };
    const auto toRgb = [](SBxPicBuf rows, const SBxPicBuf&)
    { (void)CBxPicBufAPI::ConvertYUVtoRGB(&rows, rows); };
    const auto filterPlanes = [&]
    {
        Outcome outcome = Outcome::Done;
        for (int c = 0; c < planes && outcome == Outcome::Done; ++c)
            outcome = FilterComponent(padded, c, filter);
        return outcome;
    };
    return InTurn([&] { return RunInPair(padded, padded, *filter.control, toYuv); }, filterPlanes,
                  [&] { return RunInPair(padded, padded, *filter.control, toRgb); });
}

static Outcome FilterPicture(SBxPicBuf* out, const SBxPicBuf& in, const PlaneFilter& filter)
{
    Picture padded;
    const auto pad = [&]
    { return PadForPyramid(padded.Record(), in, filter.levels, *filter.control); };
    const auto map = [&]
    {
        const int planes = filter.params.useColors ? 3 : 1;
        return in.components == 1 ? FilterComponent(padded, 0, filter)
                                  : FilterColours(padded, filter, planes);
    };
    const Outcome outcome = InTurn(pad, map);
    if (outcome == Outcome::Done) // as a whole or not at all: nobody asks from here on
        VcCopyPixels(out, padded, {in.width, in.height});
    return outcome;
}

Outcome ToneMapPicture(SBxPicBuf* out, const SBxPicBuf& in, int levels, const ToneMapParams& params,
                       const RunControl& control, ToneMapMethod method)
{
    const PlaneFilter filter = {levels, params, &control, method};
    return FailWithoutMemory([&] { return FilterPicture(out, in, filter); });
}
