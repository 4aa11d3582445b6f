#include "series/DaylightSeries.h"

#include "base/ParallelRows.h"
#include "base/ShortMemory.h"
#include "fusion/RangeStretch.h"
#include "picture/Picture.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

constexpr int kFirstStepVariants = 9; // every further step has one less

DaylightVariant DaylightVariantOf(int number)
{
    DaylightVariant variant = {0, number};
    while (variant.place >= kFirstStepVariants - variant.step)
    {
        variant.place -= kFirstStepVariants - variant.step;
        ++variant.step;
    }
    return variant;
}

std::string DaylightFileName(int number)
{
    const DaylightVariant variant = DaylightVariantOf(number);
    char name[48];
    std::snprintf(name, sizeof(name), "file_%.3i_%.3i.tif", variant.step, variant.place);
    return name;
}

int DaylightPercent(int number)
{
    return number * 5 / 2 + 5;
}

static double DaylightGamma(DaylightMode mode, int step)
{
    switch (mode)
    {
    case DaylightMode::Up: return std::pow(1.2, step);
    case DaylightMode::Down: return std::pow(1.12, -step);
    case DaylightMode::Darken: return std::pow(1.2, -step);
    }
    return 1.0;
}

static std::vector<uint16_t> GammaTable(double gamma, int bitsPerComponent)
{
    std::vector<uint16_t> table(size_t(1) << bitsPerComponent);
    const double top = double(table.size() - 1);
    for (size_t s = 0; s < table.size(); ++s)
    {
        const double value = top * std::pow(double(s) / top, 1.0 / gamma) + 0.5;
        table[s] = uint16_t(std::min(value, top));
    }
    return table;
}

// The stretch of the range as a table: that of a picture which holds every value once. The
// routine's own formula serves all modes; Up and Darken have nothing below their range.
template <typename T, typename Stretch>
static std::vector<T> RangeTable(DaylightMode mode, int place, int bitsPerComponent,
                                 Stretch stretch)
{
    const unsigned unit = 1u << (bitsPerComponent - 8), top = (1u << bitsPerComponent) - 1;
    std::vector<T> table(size_t(top) + 1);
    for (unsigned s = 0; s <= top; ++s)
        table[s] = T(s);
    const int bytes = int(table.size() * sizeof(T));
    SBxPicBuf all = {reinterpret_cast<uint8_t*>(table.data()),
                     bytes,
                     bytes,
                     int(table.size()),
                     1,
                     1,
                     bitsPerComponent};
    if (mode == DaylightMode::Down)
        stretch(&all, all, 12 * unsigned(place) * unit, top);
    else
        stretch(&all, all, 0u, (255 - 20 * unsigned(place)) * unit);
    return table;
}

std::vector<uint16_t> DaylightTable(DaylightMode mode, int number, int bitsPerComponent)
{
    const DaylightVariant variant = DaylightVariantOf(number);
    std::vector<uint16_t> table = GammaTable(DaylightGamma(mode, variant.step), bitsPerComponent);
    const auto apply = [&](const auto& range)
    {
        for (uint16_t& value : table)
            value = range[value];
    };
    if (bitsPerComponent == 8)
        apply(RangeTable<uint8_t>(mode, variant.place, 8, VcStretchRange8));
    else
        apply(RangeTable<uint16_t>(mode, variant.place, 16, VcStretchRange16));
    return table;
}

template <typename T>
static void MapSamples(SBxPicBuf* dst, const SBxPicBuf& source, const std::vector<uint16_t>& table)
{
    const std::vector<T> lookup(table.begin(), table.end()); // narrow entries stay in the cache
    const int samples = source.width * source.components;
    VcParallelRows(source.height, samples,
                   [&](int first, int end)
                   {
                       for (int y = first; y < end; ++y)
                       {
                           const T* from = PicRow<const T>(source, y);
                           T* to = PicRow<T>(*dst, y);
                           for (int i = 0; i < samples; ++i)
                               to[i] = lookup[from[i]];
                       }
                   });
}

void MakeDaylightVariant(SBxPicBuf* dst, const SBxPicBuf& source, DaylightMode mode, int number)
{
    const std::vector<uint16_t> table = DaylightTable(mode, number, source.bitsPerComponent);
    if (source.bitsPerComponent == 8)
        MapSamples<uint8_t>(dst, source, table);
    else
        MapSamples<uint16_t>(dst, source, table);
}

// How often each component has each value.
template <typename T>
static std::vector<std::vector<uint64_t>> Histograms(const SBxPicBuf& picture)
{
    const int n = picture.components;
    std::vector<std::vector<uint64_t>> counts(size_t(n),
                                              std::vector<uint64_t>(size_t(1) << (8 * sizeof(T))));
    for (int c = 0; c < n; ++c)
    {
        uint64_t* count = counts[size_t(c)].data();
        for (int y = 0; y < picture.height; ++y)
        {
            const T* row = PicRow<const T>(picture, y) + c;
            for (int x = 0; x < picture.width; ++x)
                ++count[row[x * n]];
        }
    }
    return counts;
}

// Sums are integers, so a key from the histogram is that of the pixels to the last bit.
static unsigned KeyOf(const std::vector<std::vector<uint64_t>>& counts, double pixels,
                      const std::vector<uint16_t>& table)
{
    double means = 0.0;
    for (size_t c = 0; c < 3; ++c)
    {
        const std::vector<uint64_t>& count = counts[counts.size() == 3 ? c : 0];
        uint64_t sum = 0;
        for (size_t s = 0; s < count.size(); ++s)
            sum += count[s] * table[s];
        means += double(sum) / pixels;
    }
    return unsigned(means + 0.5);
}

std::vector<unsigned> DaylightKeys(const SBxPicBuf& source, DaylightMode mode)
{
    const auto counts =
        source.bitsPerComponent == 8 ? Histograms<uint8_t>(source) : Histograms<uint16_t>(source);
    const double pixels = double(source.width) * double(source.height);
    std::vector<unsigned> keys;
    for (int number = 0; number < kDaylightVariants; ++number)
        keys.push_back(KeyOf(counts, pixels, DaylightTable(mode, number, source.bitsPerComponent)));
    return keys;
}

std::vector<int> DaylightOrder(DaylightMode mode, const std::vector<unsigned>& keys)
{
    const int count = int(keys.size());
    std::vector<int> order(keys.size());
    for (int i = 0; i < count; ++i)
        order[size_t(i)] = i;
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return keys[size_t(a)] < keys[size_t(b)]; });
    if (mode == DaylightMode::Down)
        for (int& number : order)
            number = count - 1 - number;
    return order;
}

static Outcome MakeVariants(std::vector<unsigned>* keys, const SBxPicBuf& source, DaylightMode mode,
                            const SeriesSink& sink, const SeriesControl& control)
{
    Picture working = Picture::Like(source);
    if (working.Empty())
        return Outcome::Failed;
    const std::vector<unsigned> all = DaylightKeys(source, mode);
    for (int number = 0; number < kDaylightVariants; ++number)
    {
        MakeDaylightVariant(working.Record(), source, mode, number);
        const Outcome taken = sink(number, working, DaylightFileName(number).c_str());
        if (taken != Outcome::Done)
            return taken;
        if (control.progress)
            control.progress({DaylightPercent(number), number + 1, !control.CancelRequested()});
        if (control.Ending())
            return Outcome::Cancelled;
        keys->push_back(all[size_t(number)]);
    }
    return Outcome::Done;
}

std::vector<unsigned> MakeDaylightSeries(const SBxPicBuf& source, DaylightMode mode,
                                         const SeriesSink& sink, const SeriesControl& control)
{
    std::vector<unsigned> keys;
    const auto make = [&] { return MakeVariants(&keys, source, mode, sink, control); };
    (void)FailWithoutMemory(make); // their number tells how it went
    return keys;
}
