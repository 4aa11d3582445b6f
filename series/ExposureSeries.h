#pragma once

#include "series/ExposureSeriesControl.h"

#include <cstdint>
#include <string>

// One photograph as a series of eleven exposures: 0 to 4 are ever brighter, 5 is the photograph
// itself, 6 to 10 are ever darker. Fused, they give what a real bracket would.

constexpr int kExposures = 11;

// Samples in [lo, hi) of the photograph are stretched to the full range.
struct ExposureRange
{
    unsigned lo, hi;
};
ExposureRange ExposureRangeOf(int number, int bitsPerComponent);

std::string ExposureFileName(int number); // "file_000.tif" and so on

// Shown once exposure `number` is made. The first one leaves the panel as it opened, at 5.
int ExposurePercent(int number);

// Noise reduction: 0 none, 1 low, 2 medium, 3 high.
constexpr unsigned kNoiseLevels = 4;

// Radius of the denoising filter for an exposure, or 0 where it is not applied. Only the three
// brightest exposures are denoised: they amplify the noise that the others hide.
int DenoiseRadius(int number, unsigned noiseLevel);

// The exposure without denoising. dst has the geometry of the source.
void MakeExposure(SBxPicBuf* dst, const SBxPicBuf& source, int number);

// Makes the exposures in order and hands each to the sink. Between an exposure and the next, both
// ways to stop are asked; the exposure that was being made when the stop came has still reached
// the sink, but does not count. Returns the number of exposures that count: kExposures when all
// went well, less after a stop, when the sink did not take one, or when memory is short.
int MakeExposureSeries(const SBxPicBuf& source, unsigned noiseLevel, const SeriesSink& sink,
                       const SeriesControl& control);

// Threads for the denoising filter from the masks of processors that this process may use and that
// the system has: the position of the highest bit common to both, plus one. Not their number: with
// every second processor allowed it is about twice that, which costs nothing. Kept in 8 bits.
uint8_t ProcessorCount(uint64_t processMask, uint64_t systemMask);
