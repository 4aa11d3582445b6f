#include "pipeline/FusionFeed.h"

Outcome StartSums(FusionSums* sums, const SBxPicBuf& geometry, unsigned exposureMid)
{
    sums->Free();
    sums->sources = 0;
    const bool failed = VcInitAccumulator(&sums->acc, geometry, exposureMid);
    return FailedIf(failed);
}

Outcome AddFeed(FusionSums* sums, const SourceFeed& feed, FusionStop stop)
{
    const SourceTaker add = [sums, stop](const SBxPicBuf& source)
    {
        const bool failed = VcAccumulateImage(&sums->acc, source, stop);
        if (failed)
            return stop && stop() ? Outcome::Cancelled : Outcome::Failed;
        ++sums->sources;
        return Outcome::Done;
    };
    return feed(add);
}

Outcome BlendSums(SBxPicBuf* result, const std::vector<FusionSums*>& sums)
{
    VcFusionAccumulator* joined = nullptr;
    for (FusionSums* part : sums)
    {
        if (part->sources == 0)
            continue;
        if (joined)
            VcMergeAccumulator(joined, part->acc);
        else
            joined = &part->acc;
    }
    if (!joined || uint32_t(result->components) != joined->channels)
        return Outcome::Failed;
    const bool failed = VcComposeResult(result, *joined);
    return FailedIf(failed);
}

Outcome FuseFeed(SBxPicBuf* result, const SBxPicBuf& geometry, unsigned exposureMid,
                 const SourceFeed& feed, FusionStop stop)
{
    FusionSums sums;
    if (StartSums(&sums, geometry, exposureMid) != Outcome::Done)
        return Outcome::Failed;
    const Outcome added = AddFeed(&sums, feed, stop);
    if (added != Outcome::Done)
        return added;
    if (!result->data)
        CBxPicBufAPI::ReinitHeap(result, geometry);
    return BlendSums(result, {&sums});
}
