#include "series/ExposureSeries.h"

#include "base/ShortMemory.h"
#include "fusion/RangeStretch.h"
#include "picture/Picture.h"
#include "series/Denoise.h"

#include <algorithm>
#include <cstdio>

constexpr int kBrightened = 5; // exposures 0..4

ExposureRange ExposureRangeOf(int number, int bitsPerComponent)
{
    const unsigned unit = 1u << (bitsPerComponent - 8);
    if (number < kBrightened)
        return {0, 40 * unsigned(6 - number) * unit};
    return {40 * unsigned(number - kBrightened) * unit, (1u << bitsPerComponent) - 1};
}

std::string ExposureFileName(int number)
{
    char name[32];
    std::snprintf(name, sizeof(name), "file_%.3i.tif", number);
    return name;
}

int ExposurePercent(int number)
{
    if (number == 0)
        return 5;
    return number < kBrightened ? 25 * number - 20 : 82 + 2 * (number - kBrightened);
}

int DenoiseRadius(int number, unsigned noiseLevel)
{
    if (number < 2 || number >= kBrightened || 3 * noiseLevel <= 1)
        return 0;
    return 2 + number * int((3 * noiseLevel) >> 1);
}

void MakeExposure(SBxPicBuf* dst, const SBxPicBuf& source, int number)
{
    const ExposureRange range = ExposureRangeOf(number, source.bitsPerComponent);
    if (source.bitsPerComponent == 8)
        VcStretchRange8(dst, source, range.lo, range.hi);
    else
        VcStretchRange16(dst, source, range.lo, range.hi);
}

struct SeriesPictures
{
    Picture working, scratch;
};

// The filter reads a copy. Whether it was stopped is of no interest: the picture is handed on as
// far as it got, and the series finds the stop by itself. Fails when memory is short.
static Outcome DenoiseExposure(SeriesPictures* pictures, int radius, double cache[3],
                               const SeriesControl& control)
{
    Picture& scratch = pictures->scratch;
    CBxPicBufAPI::ReinitHeap(scratch.Record(), pictures->working);
    if (scratch.Empty())
        return Outcome::Failed;
    CBxPicBufAPI::Copy(scratch.Record(), pictures->working);
    RunControl stop;
    stop.cancelled = [&control] { return control.Ending(); };
    const Outcome denoised = DenoiseTiled(pictures->working.Record(), scratch, radius, radius, 1.0,
                                          cache, control.denoiseThreads, stop);
    return denoised == Outcome::Cancelled ? Outcome::Done : denoised;
}

// A brightened exposure says nothing once a cancel has come; a darkened one still moves the bar.
static void ReportExposure(int number, const SeriesControl& control)
{
    const bool cancelled = control.CancelRequested();
    if (number == 0 || (cancelled && number < kBrightened) || !control.progress)
        return;
    const int percent = ExposurePercent(number);
    control.progress({percent, percent, !cancelled});
}

// Counts the exposures in `made`.
static Outcome MakeExposures(int* made, const SBxPicBuf& source, unsigned noiseLevel,
                             const SeriesSink& sink, const SeriesControl& control)
{
    SeriesPictures pictures = {Picture::Like(source), {}};
    if (pictures.working.Empty())
        return Outcome::Failed;
    double noise[3] = {-1.0, -1.0, -1.0}; // estimated by the first denoising, for all three
    for (int k = 0; k < kExposures; *made = ++k)
    {
        MakeExposure(pictures.working.Record(), source, k);
        const int radius = DenoiseRadius(k, noiseLevel);
        if (radius > 0 && DenoiseExposure(&pictures, radius, noise, control) != Outcome::Done)
            return Outcome::Failed;
        const Outcome taken = sink(k, pictures.working, ExposureFileName(k).c_str());
        if (taken != Outcome::Done)
            return taken;
        ReportExposure(k, control);
        if (control.Ending())
            return Outcome::Cancelled;
    }
    return Outcome::Done;
}

int MakeExposureSeries(const SBxPicBuf& source, unsigned noiseLevel, const SeriesSink& sink,
                       const SeriesControl& control)
{
    int made = 0;
    const auto make = [&] { return MakeExposures(&made, source, noiseLevel, sink, control); };
    (void)FailWithoutMemory(make); // their number tells how it went
    return made;
}

uint8_t ProcessorCount(uint64_t processMask, uint64_t systemMask)
{
    uint8_t count = 0;
    for (uint64_t mask = processMask & systemMask; mask != 0; mask >>= 1)
        ++count;
    return count;
}
