// The commands on single photographs: what each of them computes.

#include "cli/PhotoCommands.h"

#include "cli/PhotoCommand.h"
#include "cli/Progress.h"

#include "contrast/LevelsOfDetail.h"
#include "picture/Picture.h"
#include "pipeline/FusionFeed.h"
#include "series/DaylightSeries.h"
#include "series/ExposureSeries.h"
#include "tonemap/ToneMap.h"

static const char kNoMemory[] = "not enough memory for a picture of this size";

// Fuses pictures that are made one after the other and never stand in memory together.
static std::string Fuse(SBxPicBuf* result, const SBxPicBuf& photo, int exposureMid,
                        const SourceFeed& feed)
{
    if (!VcFusionAcceptsSize(photo.width, photo.height))
        return "fusion needs at least " + std::to_string(kFusionMinSide) + " pixels each way";
    const Outcome fused = FuseFeed(result, photo, unsigned(exposureMid), feed, StopRequested);
    return fused == Outcome::Done ? "" : kNoMemory;
}

static std::string Single(SBxPicBuf* result, const SBxPicBuf& photo, const PhotoProgress& progress,
                          const CliOptions& options)
{
    SeriesControl control;
    control.cancelRequested = progress.stopped;
    control.denoiseThreads = unsigned(options.threads);
    const auto exposures = [&](const SourceTaker& take)
    {
        const SeriesSink show = [&](int number, const SBxPicBuf& exposure, const char*)
        {
            const Outcome taken = take(exposure);
            progress.show(double(number + 1) / (kExposures + 1));
            return taken;
        };
        const int made =
            MakeExposureSeries(photo, unsigned(options.numbers.denoiseStrength), show, control);
        return FailedIf(made < kExposures);
    };
    return Fuse(result, photo, options.numbers.fusionTool.exposure, exposures);
}

static std::string Daylight(SBxPicBuf* result, const SBxPicBuf& photo,
                            const PhotoProgress& progress, const CliOptions& options,
                            DaylightMode mode)
{
    const auto variants = [&](const SourceTaker& take)
    {
        Picture variant = Picture::Like(photo);
        const std::vector<int> order = DaylightOrder(mode, DaylightKeys(photo, mode));
        Outcome taken = FailedIf(variant.Empty());
        for (int i = 0;
             i < options.numbers.powerTool.power && taken == Outcome::Done && !progress.stopped();
             ++i)
        {
            MakeDaylightVariant(variant.Record(), photo, mode, order[size_t(i)]);
            taken = take(variant);
            progress.show(double(i + 1) / (options.numbers.powerTool.power + 1));
        }
        return taken;
    };
    return Fuse(result, photo, 128, variants);
}

static std::string ToneMap(SBxPicBuf* result, const SBxPicBuf& photo, const PhotoProgress& progress,
                           const CliOptions& options)
{
    CBxPicBufAPI::ReinitHeap(result, photo);
    if (!result->data)
        return kNoMemory;
    const ToneMapParams params = ToneMapParamsOf(options.numbers.toneMap);
    const bool chroma = params.useColors && photo.components == 3;
    const RunControl control = ControlOf(progress, chroma ? 45 : 15);
    const Outcome outcome = ToneMapPicture(result, photo, kToneMapLevels, params, control);
    return outcome == Outcome::Done ? "" : kNoMemory;
}

static std::string SmartContrast(SBxPicBuf* result, const SBxPicBuf& photo,
                                 const PhotoProgress& progress, const CliOptions& options)
{
    CBxPicBufAPI::ReinitHeap(result, photo);
    const RunControl control = ControlOf(progress, kSmartContrastSteps * photo.components);
    if (!result->data)
        return kNoMemory;
    const Outcome outcome =
        SmartContrastPicture(result, photo, options.numbers.levelsOfDetail, control);
    return outcome == Outcome::Done ? "" : kNoMemory;
}

int RunSingle(const CliOptions& options, const CliStreams& streams)
{
    return RunOnPhotos("single", options, streams,
                       [&](SBxPicBuf* result, const SBxPicBuf& photo, const PhotoProgress& shown)
                       { return Single(result, photo, shown, options); });
}

int RunDaylightUp(const CliOptions& options, const CliStreams& streams)
{
    return RunOnPhotos("daylight-up", options, streams,
                       [&](SBxPicBuf* result, const SBxPicBuf& photo, const PhotoProgress& shown)
                       { return Daylight(result, photo, shown, options, DaylightMode::Up); });
}

int RunDaylightDown(const CliOptions& options, const CliStreams& streams)
{
    return RunOnPhotos("daylight-down", options, streams,
                       [&](SBxPicBuf* result, const SBxPicBuf& photo, const PhotoProgress& shown)
                       { return Daylight(result, photo, shown, options, DaylightMode::Down); });
}

int RunToneMap(const CliOptions& options, const CliStreams& streams)
{
    return RunOnPhotos("tone-map", options, streams,
                       [&](SBxPicBuf* result, const SBxPicBuf& photo, const PhotoProgress& shown)
                       { return ToneMap(result, photo, shown, options); });
}

int RunSmartContrast(const CliOptions& options, const CliStreams& streams)
{
    return RunOnPhotos("smart-contrast", options, streams,
                       [&](SBxPicBuf* result, const SBxPicBuf& photo, const PhotoProgress& shown)
                       { return SmartContrast(result, photo, shown, options); });
}
