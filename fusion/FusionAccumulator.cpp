#include "fusion/FusionAccumulator.h"

#include "base/Outcome.h"
#include "base/ParallelRows.h"
#include "fusion/FusionFilter.h"
#include "fusion/FusionKernels.h"
#include "fusion/FusionPyramid.h"
#include "picture/FloatPlane.h"
#include "picture/Picture.h"

#include <algorithm>
#include <cstdlib>

static uint32_t CountLevels(uint32_t width, uint32_t height)
{
    uint32_t levels = 0;
    for (uint32_t side = std::min(width, height); side >= uint32_t(kFusionMinSide); side /= 2)
        ++levels;
    return std::min(levels, kFusionMaxLevels);
}

bool VcFusionAcceptsSize(int width, int height)
{
    return std::min(width, height) >= kFusionMinSide;
}

// Fresh pages are handed out at their first touch. Read first, as sums are, each would come twice:
// as a common page of zeros, then as one of its own, and the other threads are told in between.
static void TouchPages(float* plane, int width, int height)
{
    constexpr int64_t kPageFloats = 1024;
    VcParallelRows(height, width,
                   [=](int first, int end)
                   {
                       const int64_t last = int64_t(end) * width;
                       for (int64_t i = int64_t(first) * width; i < last; i += kPageFloats)
                           plane[i] = 0.0f;
                   });
}

bool VcInitAccumulator(VcFusionAccumulator* acc, const SBxPicBuf& geometry, unsigned exposureMid)
{
    *acc = VcFusionAccumulator{};
    acc->channels = uint32_t(geometry.components);
    acc->bitsPerComponent = uint32_t(geometry.bitsPerComponent);
    acc->width = uint32_t(geometry.width);
    acc->height = uint32_t(geometry.height);
    acc->exposureMid = exposureMid;
    acc->levels = CountLevels(acc->width, acc->height);
    for (uint32_t k = 0; k <= acc->levels; ++k)
    {
        acc->levelWidth[k] = acc->width >> k;
        acc->levelHeight[k] = acc->height >> k;
    }
    FillGeneratingKernel(acc->kernel);

    acc->planes =
        static_cast<float*(*)[kFusionPlanes]>(std::calloc(acc->channels, sizeof(*acc->planes)));
    if (!acc->planes)
        return true;
    for (uint32_t c = 0; c < acc->channels; ++c)
    {
        const bool sharesWeights = acc->channels == 3 && c > 0;
        for (uint32_t k = 0; k <= acc->levels; ++k)
        {
            const int64_t samples = int64_t(acc->levelWidth[k]) * acc->levelHeight[k];
            float*& weights = acc->planes[c][k];
            float*& sums = acc->planes[c][kFusionLevelSlots + k];
            weights = sharesWeights ? nullptr : VcAllocPlane(samples);
            sums = VcAllocPlane(samples);
            if ((!weights && !sharesWeights) || !sums)
            {
                VcFreeAccumulator(acc);
                return true;
            }
            for (float* plane : {weights, sums})
                if (plane)
                    TouchPages(plane, int(acc->levelWidth[k]), int(acc->levelHeight[k]));
        }
    }
    return false;
}

bool VcFreeAccumulator(VcFusionAccumulator* acc)
{
    if (!acc->planes)
        return false;
    for (uint32_t c = 0; c < acc->channels; ++c)
        for (float* plane : acc->planes[c])
            VcFreePlane(plane);
    std::free(acc->planes);
    acc->planes = nullptr;
    return false;
}

static bool FitsAccumulator(const VcFusionAccumulator& acc, const SBxPicBuf& picture)
{
    return acc.planes && picture.data &&
           uint32_t(picture.bitsPerComponent) == acc.bitsPerComponent &&
           uint32_t(picture.width) == acc.width && uint32_t(picture.height) == acc.height;
}

// One component of the picture as a plane of its own; empty when memory is short.
static Picture ComponentPlane(const SBxPicBuf& picture, unsigned index)
{
    Picture plane(picture.width, picture.height, 1, picture.bitsPerComponent);
    if (!plane.Empty())
        (void)CBxPicBufAPI::ExtractComponent(plane.Record(), index, picture);
    return plane;
}

// The three components, taken apart in one pass. Fails when memory is short.
static Outcome SplitPicture(Picture planes[3], const SBxPicBuf& picture)
{
    for (int c = 0; c < 3; ++c)
    {
        planes[c] = Picture(picture.width, picture.height, 1, picture.bitsPerComponent);
        if (planes[c].Empty())
            return Outcome::Failed;
    }
    const auto split =
        VcFusionKernels().splitRow[picture.bitsPerComponent == 8 ? kFusionBytes : kFusionWords];
    VcParallelRows(picture.height, picture.width,
                   [&](int first, int end)
                   {
                       for (int y = first; y < end; ++y)
                       {
                           void* const to[3] = {PicRow<void>(planes[0], y),
                                                PicRow<void>(planes[1], y),
                                                PicRow<void>(planes[2], y)};
                           split(to, PicRow<const void>(picture, y), picture.width);
                       }
                   });
    return Outcome::Done;
}

static bool AccumulateThree(VcFusionAccumulator* acc, const SBxPicBuf& picture, FusionStop stop)
{
    Picture planes[3];
    if (SplitPicture(planes, picture) != Outcome::Done)
        return true;
    const SBxPicBuf headers[3] = {planes[0], planes[1], planes[2]};
    return VcAccumulatePlanes3(acc->planes, headers, *acc, stop);
}

bool VcAccumulateImage(VcFusionAccumulator* acc, const SBxPicBuf& picture, FusionStop stop)
{
    if (!FitsAccumulator(*acc, picture) || uint32_t(picture.components) != acc->channels)
        return true;
    if (acc->channels == 1)
        return VcAccumulatePlane(acc->planes, picture, *acc, stop);
    if (acc->channels == 3)
        return AccumulateThree(acc, picture, stop);

    bool failed = false;
    for (unsigned c = 0; c < acc->channels; ++c)
    {
        const Picture plane = ComponentPlane(picture, c);
        failed |= plane.Empty() || VcAccumulatePlane(acc->planes + c, plane, *acc, stop);
    }
    return failed;
}

bool VcMergeAccumulator(VcFusionAccumulator* acc, const VcFusionAccumulator& other)
{
    for (uint32_t c = 0; c < acc->channels; ++c)
    {
        for (uint32_t slot = 0; slot < kFusionPlanes; ++slot)
        {
            float* to = acc->planes[c][slot];
            const float* from = other.planes[c][slot];
            if (!to || !from)
                continue;
            const uint32_t level = slot % kFusionLevelSlots;
            const int width = int(acc->levelWidth[level]);
            VcParallelRows(int(acc->levelHeight[level]), width,
                           [=](int first, int end)
                           {
                               const int64_t last = int64_t(end) * width;
                               for (int64_t i = int64_t(first) * width; i < last; ++i)
                                   to[i] += from[i];
                           });
        }
    }
    return false;
}

bool VcComposeResult(SBxPicBuf* picture, const VcFusionAccumulator& acc)
{
    if (!FitsAccumulator(acc, *picture))
        return true;
    if (acc.channels == 1 && picture->components == 1)
        return VcComposePlane(picture, acc, 0);
    if (acc.channels == 3 && picture->components == 3)
        return VcComposePlanes3(picture, acc);

    Picture plane(picture->width, picture->height, 1, picture->bitsPerComponent);
    bool failed = plane.Empty();
    for (unsigned c = 0; c < acc.channels && !plane.Empty(); ++c)
    {
        if (VcComposePlane(plane.Record(), acc, c))
            failed = true;
        else
            (void)CBxPicBufAPI::InsertComponent(picture, c, plane);
    }
    return failed;
}
