// Taking apart and putting together go row by row: an expanded row is subtracted from, or added
// to, while it is still in the cache. The scaled Laplacian needs no plane of its own for that:
// scaling and adding stay two roundings, so the samples are the same as in two passes.

#include "contrast/LevelsOfDetail.h"

#include "base/ParallelRows.h"
#include "base/ShortMemory.h"
#include "contrast/LevelsOfDetailPadding.h"
#include "fusion/FusionFilter.h"
#include "fusion/FusionKernels.h"
#include "picture/Picture.h"

#include <algorithm>

float LevelGain(int lod)
{
    return float(lod) / 10.0f;
}

int CountDetailLevels(int width, int height)
{
    int levels = 0;
    for (int side = std::min(width, height); side >= 11 && levels < kDetailLevels; side >>= 1)
        ++levels;
    return levels;
}

static int64_t LevelSamples(const LevelsOfDetail& record, int level)
{
    return int64_t(record.levelWidth[level]) * record.levelHeight[level];
}

static float* GaussPlane(const LevelsOfDetail& record, int component, int level)
{
    return (level == record.levels ? record.coarsest[component] : record.gauss[level]).get();
}

void ReleaseLevelsOfDetail(LevelsOfDetail* record)
{
    *record = LevelsOfDetail();
}

// Whether there is the memory for it.
static bool AllocateInto(FloatPlane* plane, int64_t samples)
{
    plane->reset(VcAllocPlane(samples));
    return bool(*plane);
}

static Outcome AllocatePlanes(LevelsOfDetail* record)
{
    for (int i = 0; i < record->levels; ++i)
    {
        const int64_t samples = LevelSamples(*record, i);
        if (!AllocateInto(&record->gauss[i], samples))
            return Outcome::Failed;
        for (int c = 0; c < record->components; ++c)
            if (!AllocateInto(&record->laplace[c][i], samples))
                return Outcome::Failed;
    }
    for (int c = 0; c < record->components; ++c)
        if (!AllocateInto(&record->coarsest[c], LevelSamples(*record, record->levels)))
            return Outcome::Failed;
    return Outcome::Done;
}

// Everything but the contents of the planes. Each level has at least 5 samples a side, so that
// both filters write all of every plane.
static Outcome SetUp(LevelsOfDetail* record, const SBxPicBuf& padded, int maxLevels)
{
    ReleaseLevelsOfDetail(record);
    record->components = padded.components;
    record->bitsPerComponent = padded.bitsPerComponent;
    record->width = padded.width;
    record->height = padded.height;
    record->levels = std::min(CountDetailLevels(padded.width, padded.height), maxLevels);
    for (int i = 0; i <= record->levels; ++i)
    {
        record->levelWidth[i] = padded.width >> i;
        record->levelHeight[i] = padded.height >> i;
    }
    FillGeneratingKernel(record->kernel);
    const Outcome allocated = AllocatePlanes(record);
    if (allocated != Outcome::Done)
        ReleaseLevelsOfDetail(record);
    return allocated;
}

template <typename T>
static void ComponentRows(float* plane, const SBxPicBuf& picture, int component, int first, int end)
{
    for (int y = first; y < end; ++y)
    {
        const T* from = PicRow<const T>(picture, y) + component;
        float* to = plane + int64_t(y) * picture.width;
        for (int x = 0; x < picture.width; ++x)
            to[x] = float(from[x * picture.components]);
    }
}

static void ComponentToFloat(float* plane, const SBxPicBuf& picture, int component)
{
    VcParallelRows(picture.height, picture.width,
                   [&](int first, int end)
                   {
                       if (picture.bitsPerComponent == 8)
                           ComponentRows<uint8_t>(plane, picture, component, first, end);
                       else
                           ComponentRows<uint16_t>(plane, picture, component, first, end);
                   });
}

static CBxRect<int> WholeLevel(const LevelsOfDetail& record, int level)
{
    return {0, 0, record.levelWidth[level], record.levelHeight[level]};
}

// Expands the part of the next level into `dst` and calls row(expanded, other's samples, count) for
// each row while it is in the cache. `other` is a plane of the level's size.
template <typename RowFn>
static void ExpandAndDo(float* dst, const LevelsOfDetail& record, int component, int level,
                        const float* other, const CBxRect<int>& part, RowFn row)
{
    const int width = record.levelWidth[level], height = record.levelHeight[level];
    const FusionPlane coarse = {GaussPlane(record, component, level + 1),
                                record.levelWidth[level + 1], record.levelHeight[level + 1]};
    const auto expandRow = VcFusionKernels().expandRow;
    const auto rows = [&](int first, int end)
    {
        for (int y = part.top + first; y < part.top + end; ++y)
        {
            const int64_t at = int64_t(y) * width;
            expandRow(dst + at, width, height, &coarse, record.kernel, y, part.left, part.right);
            row(dst + at + part.left, other + at + part.left, part.right - part.left);
        }
    };
    VcParallelRows(part.bottom - part.top, part.right - part.left, rows);
}

static void TakeApartLevel(LevelsOfDetail* record, int component, int level)
{
    const float* fine = record->gauss[level].get();
    VcReduce(GaussPlane(*record, component, level + 1), fine, record->levelWidth[level + 1],
             record->levelHeight[level + 1], record->levelWidth[level], record->levelHeight[level],
             record->kernel);
    ExpandAndDo(record->laplace[component][level].get(), *record, component, level, fine,
                WholeLevel(*record, level),
                [](float* __restrict to, const float* __restrict from, int width)
                {
                    for (int x = 0; x < width; ++x)
                        to[x] = from[x] - to[x];
                });
}

static void PutTogetherLevel(LevelsOfDetail* record, int component, int level, float gain,
                             const CBxRect<int>& part)
{
    ExpandAndDo(record->gauss[level].get(), *record, component, level,
                record->laplace[component][level].get(), part,
                [=](float* __restrict to, const float* __restrict detail, int width)
                {
                    for (int x = 0; x < width; ++x)
                        to[x] = to[x] + gain * detail[x];
                });
}

// One component of the picture into the record's place for a component.
static Outcome DecomposeComponent(LevelsOfDetail* record, int place, const SBxPicBuf& padded,
                                  int component, const RunControl& control)
{
    ComponentToFloat(GaussPlane(*record, place, 0), padded, component);
    for (int i = 0; i < record->levels; ++i)
    {
        if (control.Cancelled())
            return Outcome::Cancelled;
        TakeApartLevel(record, place, i);
    }
    return Outcome::Done;
}

Outcome Decompose(LevelsOfDetail* record, const SBxPicBuf& padded, int maxLevels,
                  const RunControl& control)
{
    if (SetUp(record, padded, maxLevels) != Outcome::Done)
        return Outcome::Failed;
    for (int c = 0; c < record->components; ++c)
    {
        const Outcome outcome = DecomposeComponent(record, c, padded, c, control);
        if (outcome == Outcome::Done)
            continue;
        ReleaseLevelsOfDetail(record);
        return outcome;
    }
    return Outcome::Done;
}

Outcome RecomposeComponent(SBxPicBuf* padded, LevelsOfDetail* record, bool autoStretch,
                           const float gains[kDetailLevels], int component,
                           const RunControl& control)
{
    for (int i = record->levels - 1; i >= 0; --i)
    {
        if (control.Cancelled())
            return Outcome::Cancelled;
        PutTogetherLevel(record, component, i, gains[i], WholeLevel(*record, i));
    }
    const float* finest = GaussPlane(*record, component, 0);
    if (record->bitsPerComponent == 8)
        ToInteger8(padded, component, finest, autoStretch);
    else
        ToInteger16(padded, component, finest, autoStretch);
    return Outcome::Done;
}

static bool IsOfRecord(const SBxPicBuf& padded, const LevelsOfDetail& record)
{
    return padded.components == record.components && padded.width == record.width &&
           padded.height == record.height && padded.bitsPerComponent == record.bitsPerComponent;
}

Outcome Recompose(SBxPicBuf* padded, LevelsOfDetail* record, const float gains[kDetailLevels],
                  const RunControl& control)
{
    if (!IsOfRecord(*padded, *record))
        return Outcome::Failed;
    for (int c = 0; c < record->components; ++c)
    {
        const Outcome outcome = RecomposeComponent(padded, record, false, gains, c, control);
        if (outcome != Outcome::Done)
            return outcome;
    }
    return Outcome::Done;
}

// Of the next level, what expanding the samples [first, end) of a side looks at. The windows of
// five begin two samples before, moved inside the side.
static void WidenToCoarse(int* first, int* end, int side, int coarseSide)
{
    const auto start = [=](int at) { return std::max(std::min(at - 2, side - 5), 0); };
    *first = start(*first) / 2;
    *end = std::min((start(*end - 1) + 4) / 2 + 1, coarseSide);
}

Outcome RecomposeRegion(SBxPicBuf* padded, LevelsOfDetail* record, const float gains[kDetailLevels],
                        const CBxRect<int>& region)
{
    if (!IsOfRecord(*padded, *record))
        return Outcome::Failed;
    CBxRect<int> parts[kDetailLevels + 1];
    parts[0] = {std::max(region.left, 0), std::max(region.top, 0),
                std::min(region.right, record->width), std::min(region.bottom, record->height)};
    if (parts[0].left >= parts[0].right || parts[0].top >= parts[0].bottom)
        return Outcome::Done;
    for (int i = 0; i < record->levels; ++i)
    {
        CBxRect<int>& part = parts[i + 1] = parts[i];
        WidenToCoarse(&part.left, &part.right, record->levelWidth[i], record->levelWidth[i + 1]);
        WidenToCoarse(&part.top, &part.bottom, record->levelHeight[i], record->levelHeight[i + 1]);
    }
    for (int c = 0; c < record->components; ++c)
    {
        for (int i = record->levels - 1; i >= 0; --i)
            PutTogetherLevel(record, c, i, gains[i], parts[i]);
        ToIntegerRect(padded, c, GaussPlane(*record, c, 0), parts[0]);
    }
    return Outcome::Done;
}

static Outcome SmartContrastComponents(SBxPicBuf* out, const SBxPicBuf& in, SBxPicBuf* padded,
                                       const DetailPadding& padding, const float* gains,
                                       const RunControl& control)
{
    LevelsOfDetail record;
    if (SetUp(&record, *padded, padding.levels) != Outcome::Done)
        return Outcome::Failed;
    // The picture's place in the padded plane, as a picture of its own.
    SBxPicBuf place = *padded;
    place.data += int64_t(padding.y) * padded->stride + padding.x * (padded->bitsPerComponent / 8);
    place.width = in.width;
    place.height = in.height;
    for (int c = 0; c < in.components; ++c)
    {
        (void)CBxPicBufAPI::ExtractComponent(&place, unsigned(c), in);
        if (in.bitsPerComponent == 8)
            ReplicateBorder8(padded, padding.x, padding.y, in.width, in.height);
        else
            ReplicateBorder16(padded, padding.x, padding.y, in.width, in.height);
        if (DecomposeComponent(&record, 0, *padded, 0, control) != Outcome::Done)
            return Outcome::Cancelled;
        control.Advance(1);
        if (RecomposeComponent(padded, &record, false, gains, 0, control) != Outcome::Done)
            return Outcome::Cancelled;
        (void)CBxPicBufAPI::InsertComponent(out, unsigned(c), place);
        control.Advance(1);
    }
    return Outcome::Done;
}

Outcome SmartContrastPicture(SBxPicBuf* out, const SBxPicBuf& in, const int lod[kDetailLevels],
                             const RunControl& control)
{
    float gains[kDetailLevels];
    std::transform(lod, lod + kDetailLevels, gains, LevelGain);
    const DetailPadding padding = DetailPaddingOf(in.width, in.height);
    Picture padded(padding.width, padding.height, 1, in.bitsPerComponent);
    if (padded.Empty())
        return Outcome::Failed;
    const auto run = [&]
    { return SmartContrastComponents(out, in, padded.Record(), padding, gains, control); };
    return FailWithoutMemory(run);
}
