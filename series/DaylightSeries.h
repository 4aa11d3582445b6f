#pragma once

#include "series/ExposureSeriesControl.h"

#include <cstdint>
#include <string>
#include <vector>

// One photograph as a series of 39 variants, each with another gamma and another range, ordered by
// brightness; how many of them are fused decides how far the photograph is brightened or darkened.
//
// Variants are numbered in the order of making: step k = 0..5 (ever stronger gamma), and in it
// j = 0..8-k (ever more clipping). Every variant maps each sample through one table, so brightness
// keys, and with them the order, follow from the photograph's histogram: only those variants that
// are really fused need pixels.

constexpr int kDaylightVariants = 39;

enum class DaylightMode
{
    Up = 1,     // gamma above 1, highlights clipped
    Down = 2,   // gamma below 1, shadows clipped
    Darken = 3, // gamma below 1, highlights clipped; no command uses it
};

struct DaylightVariant
{
    int step;  // k
    int place; // j
};
DaylightVariant DaylightVariantOf(int number);

std::string DaylightFileName(int number); // "file_000_000.tif" up to "file_005_003.tif"

// What the panel shows once variant `number` is made; the bar's range is 0..40.
int DaylightPercent(int number);

// What becomes of every sample value: 256 or 65536 entries. The gamma is rounded to a sample
// before the range is adjusted.
std::vector<uint16_t> DaylightTable(DaylightMode mode, int number, int bitsPerComponent);

// dst has the geometry of the source, 8 or 16 bits, and may be the source. Throws std::bad_alloc,
// as DaylightTable and DaylightKeys do.
void MakeDaylightVariant(SBxPicBuf* dst, const SBxPicBuf& source, DaylightMode mode, int number);

// Brightness keys by number, without making the pictures: the sum of the three channel means (a
// grey picture counts as three equal channels), rounded.
std::vector<unsigned> DaylightKeys(const SBxPicBuf& source, DaylightMode mode);

// Numbers of the variants in the order of fusion, from the keys of a series, complete or not:
// darkest first. Down takes, in place of variant n of the sorted list, variant count - 1 - n. That
// is neither the sorted list nor its reverse, and wanted so.
std::vector<int> DaylightOrder(DaylightMode mode, const std::vector<unsigned>& keys);

// Makes the variants in order of their numbers and hands each to the sink. A stop ends the series
// after the variant being made, which does not count then. Returns the keys of the variants that
// count: kDaylightVariants when all went well, less after a stop, when the sink did not take one,
// or when memory is short. Texts go quiet after a cancel, the bar does not.
std::vector<unsigned> MakeDaylightSeries(const SBxPicBuf& source, DaylightMode mode,
                                         const SeriesSink& sink, const SeriesControl& control);
