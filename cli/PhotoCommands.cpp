// The commands on single photographs: what each of them computes.

#include "cli/PhotoCommand.h"
#include "cli/Progress.h"

#include "base/ShortMemory.h"
#include "contrast/LevelsOfDetail.h"
#include "fusion/FusionAccumulator.h"
#include "picture/Picture.h"
#include "series/DaylightSeries.h"
#include "series/ExposureSeries.h"
#include "tonemap/ToneMap.h"

static const char kNoMemory[] = "not enough memory for a picture of this size";

// Fuses pictures that are made one after the other and never stand in memory together.
struct SeriesFusion
{
    VcFusionAccumulator accumulator = {};

    ~SeriesFusion() { VcFreeAccumulator(&accumulator); }
};

static std::string StartFusion(SeriesFusion* fusion, const SBxPicBuf& photo, int exposureMid)
{
    if (!VcFusionAcceptsSize(photo.width, photo.height))
        return "fusion needs at least " + std::to_string(kFusionMinSide) + " pixels each way";
    return VcInitAccumulator(&fusion->accumulator, photo, unsigned(exposureMid)) ? kNoMemory : "";
}

static std::string FinishFusion(const SeriesFusion& fusion, SBxPicBuf* result,
                                const SBxPicBuf& photo)
{
    CBxPicBufAPI::ReinitHeap(result, photo);
    const bool failed = !result->data || VcComposeResult(result, fusion.accumulator);
    return failed ? kNoMemory : "";
}

static std::string Single(SBxPicBuf* result, const SBxPicBuf& photo, const PhotoProgress& progress,
                          const CliOptions& options)
{
    SeriesFusion fusion;
    const std::string problem = StartFusion(&fusion, photo, options.numbers.fusionTool.exposure);
    if (!problem.empty())
        return problem;
    SeriesControl control;
    control.cancelRequested = progress.stopped;
    control.denoiseThreads = unsigned(options.threads);
    const SeriesSink fuse = [&](int number, const SBxPicBuf& exposure, const char*)
    {
        const bool failed = VcAccumulateImage(&fusion.accumulator, exposure, StopRequested);
        progress.show(double(number + 1) / (kExposures + 1));
        return failed;
    };
    if (MakeExposureSeries(photo, unsigned(options.numbers.denoiseStrength), fuse, control) <
        kExposures)
        return kNoMemory;
    return FinishFusion(fusion, result, photo);
}

static std::string Daylight(SBxPicBuf* result, const SBxPicBuf& photo,
                            const PhotoProgress& progress, const CliOptions& options,
                            DaylightMode mode)
{
    SeriesFusion fusion;
    const std::string problem = StartFusion(&fusion, photo, 128);
    if (!problem.empty())
        return problem;
    Picture variant = Picture::Like(photo);
    const std::vector<int> order = DaylightOrder(mode, DaylightKeys(photo, mode));
    bool failed = variant.Empty();
    for (int i = 0; i < options.numbers.powerTool.power && !failed && !progress.stopped(); ++i)
    {
        MakeDaylightVariant(variant.Record(), photo, mode, order[size_t(i)]);
        failed = VcAccumulateImage(&fusion.accumulator, variant, StopRequested);
        progress.show(double(i + 1) / (options.numbers.powerTool.power + 1));
    }
    return failed ? kNoMemory : FinishFusion(fusion, result, photo);
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
    const int outcome = ToneMapPicture(result, photo, kToneMapLevels, params, control);
    return outcome == kToneMapDone ? "" : kNoMemory;
}

static std::string SmartContrast(SBxPicBuf* result, const SBxPicBuf& photo,
                                 const PhotoProgress& progress, const CliOptions& options)
{
    CBxPicBufAPI::ReinitHeap(result, photo);
    const RunControl control = ControlOf(progress, kSmartContrastSteps * photo.components);
    const bool failed =
        !result->data ||
        SmartContrastPicture(result, photo, options.numbers.levelsOfDetail, control);
    return failed ? kNoMemory : "";
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
