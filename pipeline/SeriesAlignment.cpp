#include "pipeline/SeriesAlignment.h"

#include "alignment/Warp.h"
#include "base/ShortMemory.h"

#include <algorithm>

static bool IsResampled(const Registration& frame)
{
    return frame.verdict == FrameVerdict::Registered;
}

static void AlignLooks(SeriesAlignment* alignment, const std::vector<FrameLook>& looks,
                       AlignmentBorder border)
{
    alignment->found = RegisterSeries(looks);
    alignment->frame = looks.front().size;
    alignment->area = {0, 0, alignment->frame.cx, alignment->frame.cy};
    std::vector<Homography> maps;
    for (const Registration& frame : alignment->found.frames)
        if (IsResampled(frame))
            maps.push_back(frame.map);
    alignment->changesSource = !maps.empty();
    const CBxRect<int> common = CommonRectangle(maps, alignment->frame);
    // Of very long pictures that moved along their short side so little could be left that mirrored
    // borders are better.
    const int shorter = std::min(common.right - common.left, common.bottom - common.top);
    if (border == AlignmentBorder::Crop && !maps.empty() && shorter >= kLeastRegisteredSide / 2)
        alignment->area = common;
}

static bool CanBeLookedAt(const DecodedSource& source, const SBxPicBuf& geometry)
{
    return source.report.problem == LoadProblem::None && IsLike(source.picture, geometry) &&
           source.picture->bitsPerComponent <= 16 &&
           std::min(source.picture->width, source.picture->height) >= kLeastRegisteredSide;
}

Outcome AlignSeries(SeriesAlignment* alignment, const std::vector<std::string>& paths,
                    AlignmentBorder border, bool ahead, const std::function<bool(int)>& comes,
                    const LoadOptions& options)
{
    *alignment = {};
    if (paths.size() < 2)
        return Outcome::Done;
    const auto look = [&]
    {
        std::vector<FrameLook> looks;
        SBxPicBuf geometry = {};
        SourceReader reader(paths, nullptr, ahead, options);
        for (size_t i = 0; i < paths.size(); ++i)
        {
            if (comes && comes(int(i)))
                return Outcome::Cancelled;
            const DecodedSource source = reader.Next();
            if (i == 0)
                geometry = source.picture;
            geometry.data = nullptr;
            if (!CanBeLookedAt(source, geometry))
                return Outcome::Done;
            looks.push_back(LookAt(source.picture));
        }
        AlignLooks(alignment, looks, border);
        return Outcome::Done;
    };
    return FailWithoutMemory(look);
}

// The area of a source, resampled where the source has moved.
static Outcome TakeArea(Picture* picture, const SeriesAlignment& alignment,
                        const Registration& frame)
{
    const CBxRect<int>& area = alignment.area;
    const SBxPicBuf& whole = *picture;
    const int width = area.right - area.left, height = area.bottom - area.top;
    Picture taken(width, height, whole.components, whole.bitsPerComponent);
    if (taken.Empty())
        return Outcome::Failed;
    if (IsResampled(frame))
        WarpPicture(taken.Record(), whole, frame.map, {area.left, area.top});
    else
        CBxPicBufAPI::CopyRect(taken.Record(), whole, {0, 0}, {area.left, area.top},
                               {width, height});
    *picture = std::move(taken);
    return Outcome::Done;
}

SourceStep StepOf(const SeriesAlignment& alignment)
{
    if (!alignment.changesSource)
        return nullptr;
    return [&alignment](Picture* picture, Picture* alpha, int number)
    {
        const Registration& frame = alignment.found.frames[size_t(number)];
        const CBxSize<int>& size = alignment.frame;
        const CBxRect<int>& area = alignment.area;
        const bool whole = area.right - area.left == size.cx && area.bottom - area.top == size.cy;
        if ((*picture)->width != size.cx || (*picture)->height != size.cy ||
            (whole && !IsResampled(frame)))
            return Outcome::Done;
        return FailWithoutMemory(
            [&]
            {
                return InTurn(
                    [&] { return TakeArea(picture, alignment, frame); }, [&]
                    { return alpha->Empty() ? Outcome::Done : TakeArea(alpha, alignment, frame); });
            });
    };
}
