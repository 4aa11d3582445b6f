#include "multiscale/ToneMap.h"

#include "multiscale/Pyramid.h"
#include "picture/ShortMemory.h"

#include <utility>

ToneMapParams ToneMapParamsOf(int contrast, int noiseAmplitude, int details, int equalization)
{
    // Quotients in single precision, then double: the settings mean these very numbers.
    return {double(float(contrast + 1) / 50.0f), double(float(noiseAmplitude + 1) / 50.0f),
            double(float(50 - details) / 80.0f), double(float(50 - equalization) / 50.0f)};
}

struct PlaneFilter
{
    int levels;
    double p1, p2, p3, p4;
    const RunControl* control;
    ToneMapMethod method;
};

static int FailureOf(const RunControl& control)
{
    return control.Cancelled() ? kToneMapCancelled : kToneMapOutOfMemory;
}

// Filters a padded one-component picture in place, going through floats on the 0..255 scale.
static int FilterPlane(SBxPicBuf* plane, const PlaneFilter& filter)
{
    const unsigned bits = unsigned(plane->bitsPerComponent);
    if (!CBxPicBufAPI::ConvertBpcComp(plane, 32, 1))
        return kToneMapOutOfMemory;
    const int width = plane->width, height = plane->height;
    if (bits == 16)
        Scale(PicRow<float>(*plane, 0), width, height, 0.00390625f);
    if (ToneMapPlane(plane, *plane, filter.levels, filter.p1, filter.p2, filter.p3, filter.p4,
                     *filter.control, filter.method))
        return FailureOf(*filter.control);
    if (bits == 16)
        Scale(PicRow<float>(*plane, 0), width, height, 256.0f);
    return CBxPicBufAPI::ConvertBpcComp(plane, bits, 1) ? kToneMapDone : kToneMapOutOfMemory;
}

static int FilterComponent(SBxPicBuf* yuv, unsigned component, const PlaneFilter& filter)
{
    if (filter.control->Cancelled())
        return kToneMapCancelled;
    ScratchPicture plane;
    CBxPicBufAPI::ReinitHeap(&plane.pic, yuv->width, yuv->height, 1, yuv->bitsPerComponent);
    if (!plane.pic.data)
        return kToneMapOutOfMemory;
    CBxPicBufAPI::ExtractComponent(&plane.pic, component, *yuv);
    const int result = FilterPlane(&plane.pic, filter);
    if (result == kToneMapDone)
        CBxPicBufAPI::InsertComponent(yuv, component, plane.pic);
    return result;
}

static int FilterPicture(SBxPicBuf* out, const SBxPicBuf& in, const PlaneFilter& filter,
                         bool useColors)
{
    ScratchPicture padded;
    if (PadForPyramid(&padded.pic, in, filter.levels))
        return kToneMapOutOfMemory;
    if (filter.control->Cancelled())
        return kToneMapCancelled;

    int result = kToneMapDone;
    if (in.components == 1)
    {
        result = FilterPlane(&padded.pic, filter);
    }
    else
    {
        CBxPicBufAPI::ConvertRGBtoYUV(&padded.pic, padded.pic);
        const unsigned planes = useColors ? 3 : 1;
        for (unsigned c = 0; c < planes && result == kToneMapDone; ++c)
            result = FilterComponent(&padded.pic, c, filter);
        if (result == kToneMapDone)
            CBxPicBufAPI::ConvertYUVtoRGB(&padded.pic, padded.pic);
    }
    if (result == kToneMapDone)
        CBxPicBufAPI::CopyRect(out, padded.pic, {0, 0}, {0, 0}, {in.width, in.height});
    return result;
}

int ToneMapPicture(SBxPicBuf* out, const SBxPicBuf& in, int levels, double p1, double p2, double p3,
                   double p4, bool useColors, const RunControl& control, ToneMapMethod method)
{
    const PlaneFilter filter = {levels, p1, p2, p3, p4, &control, method};
    int result = kToneMapOutOfMemory;
    const auto run = [&]
    {
        result = FilterPicture(out, in, filter, useColors);
        return false;
    };
    return FailsOrLacksMemory(run) ? kToneMapOutOfMemory : result;
}
