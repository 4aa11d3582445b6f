#include "tonemap/RemapWeights.h"

#include <cstdlib>

// A symmetric one-dimensional filter: taps of the offsets -half .. half.
struct Filter
{
    int half;
    std::vector<double> taps;

    explicit Filter(int halfSize) : half(halfSize), taps(size_t(2 * halfSize + 1), 0.0) {}
    double At(int offset) const
    {
        return std::abs(offset) <= half ? taps[size_t(offset + half)] : 0.0;
    }
    void Add(const Filter& other, int shift, double weight)
    {
        for (int o = -other.half; o <= other.half; ++o)
            taps[size_t(o + shift + half)] += weight * other.At(o);
    }
};

// What `reductions` reductions take from the finest samples.
static Filter ReductionFilter(int reductions)
{
    static const double binomial[5] = {1.0 / 16, 4.0 / 16, 6.0 / 16, 4.0 / 16, 1.0 / 16};
    Filter filter(0);
    filter.taps[0] = 1.0;
    for (int level = 0; level < reductions; ++level)
    {
        const int spacing = 1 << level;
        Filter next(filter.half + 2 * spacing);
        for (int i = -2; i <= 2; ++i)
            next.Add(filter, i * spacing, binomial[i + 2]);
        filter = next;
    }
    return filter;
}

RemapWeights RemapWeightsOf(int shift)
{
    const Filter down = ReductionFilter(shift), further = ReductionFilter(shift + 1);
    const int spacing = 1 << shift;
    Filter even(further.half + 2 * spacing), odd(further.half + spacing);
    even.Add(further, -2 * spacing, 0.125);
    even.Add(further, 0, 0.75);
    even.Add(further, 2 * spacing, 0.125);
    odd.Add(further, -spacing, 0.5);
    odd.Add(further, spacing, 0.5);

    RemapWeights weights;
    weights.half[0] = even.half;
    weights.half[1] = odd.half;
    const Filter* const up[2] = {&even, &odd};
    for (int py = 0; py < 2; ++py)
        for (int px = 0; px < 2; ++px)
            for (int y = -even.half; y <= even.half; ++y)
                for (int x = -even.half; x <= even.half; ++x)
                    weights.table[py][px].push_back(
                        float(down.At(y) * down.At(x) - up[py]->At(y) * up[px]->At(x)));
    return weights;
}
