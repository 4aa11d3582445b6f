#include "alignment/WarpRows.h"

#include "base/InstructionSet.h"

#include <algorithm>
#include <array>
#include <cmath>

// A little sharper than the cubic that is exact for parabolas (-0.5): a grating of eight pixels a
// period keeps its contrast within half a percent wherever it falls between the pixels, where that
// one loses twice as much. What is straight bends by a fiftieth of a pixel for it.
constexpr double kSharpness = -0.6;

constexpr int kPhases = 1 << kWarpPhaseBits;
using PhaseTable = std::array<WarpPhase, kPhases>;

// Keys' cubic convolution ("Cubic convolution interpolation for digital image processing", 1981).
static double Keys(double t)
{
    constexpr double a = kSharpness;
    t = std::abs(t);
    if (t < 1)
        return ((a + 2) * t - (a + 3)) * t * t + 1;
    return t < 2 ? ((a * t - 5 * a) * t + 8 * a) * t - 4 * a : 0;
}

static PhaseTable MakePhases()
{
    constexpr int kOne = 1 << kWarpDownBits;
    PhaseTable table = {};
    for (int i = 0; i < kPhases; ++i)
    {
        WarpPhase& phase = table[size_t(i)];
        int sum = 0;
        for (int tap = 0; tap < kWarpTaps; ++tap)
        {
            const double weight = Keys(double(i) / kPhases + 1 - tap);
            phase.down[tap] = int16_t(std::floor(weight * kOne + 0.5));
            sum += phase.down[tap];
        }
        phase.down[i < kPhases / 2 ? 1 : 2] =
            int16_t(phase.down[i < kPhases / 2 ? 1 : 2] + kOne - sum);
        for (int tap = 0; tap < kWarpTaps; ++tap)
            phase.across[tap] = float(phase.down[tap]) / (float(kOne) * float(kOne));
    }
    return table;
}

const WarpPhase* VcWarpPhases()
{
    static const PhaseTable table = MakePhases();
    return table.data();
}

// About the outermost sample, as often as it takes.
static int Mirrored(int64_t i, int count)
{
    if (i >= 0 && i < count)
        return int(i);
    if (count == 1)
        return 0;
    const int period = 2 * (count - 1);
    const int place = int(((i % period) + period) % period);
    return place < count ? place : period - place;
}

// 16-bit samples are taken from the middle of their range: the tuned loops multiply signed halves.
template <typename T>
constexpr int kWarpMiddle = sizeof(T) == 2 ? 32768 : 0;

template <typename T, int kComponents>
static T Mix(const T* const rows[kWarpTaps], const int columns[kWarpTaps], const WarpPhase& across,
             const WarpPhase& down)
{
    constexpr float kTop = float(T(~T(0)));
    float part[kWarpTaps];
    for (int tap = 0; tap < kWarpTaps; ++tap)
    {
        int32_t sum = 0;
        for (int row = 0; row < kWarpTaps; ++row)
            sum += down.down[row] * (int32_t(rows[row][columns[tap]]) - kWarpMiddle<T>);
        part[tap] = float(sum) * across.across[tap];
    }
    const float mixed = (part[0] + part[1]) + (part[2] + part[3]) + float(kWarpMiddle<T>);
    return T(std::min(std::max(mixed, 0.0f), kTop) + 0.5f);
}

template <typename T, int kComponents>
static void PlainRun(void* out, const WarpSource& source, const WarpRun& run)
{
    constexpr int kPhaseShift = kWarpPlaceBits - kWarpPhaseBits;
    T* sample = static_cast<T*>(out);
    for (int i = 0; i < run.count; ++i)
    {
        const int64_t x = run.x + i * run.stepX, y = run.y + i * run.stepY;
        const WarpPhase& across = source.phases[(x >> kPhaseShift) & (kPhases - 1)];
        const WarpPhase& down = source.phases[(y >> kPhaseShift) & (kPhases - 1)];
        const T* rows[kWarpTaps];
        int columns[kWarpTaps];
        for (int tap = 0; tap < kWarpTaps; ++tap)
        {
            const int row = Mirrored((y >> kWarpPlaceBits) + tap - 1, source.height);
            rows[tap] = reinterpret_cast<const T*>(source.data + row * source.stride);
            columns[tap] = kComponents * Mirrored((x >> kWarpPlaceBits) + tap - 1, source.width);
        }
        for (int c = 0; c < kComponents; ++c, ++sample)
        {
            *sample = Mix<T, kComponents>(rows, columns, across, down);
            for (int& column : columns)
                ++column;
        }
    }
}

static const WarpLoops kPlainLoops = {
    {{PlainRun<uint8_t, 1>, PlainRun<uint8_t, 3>}, {PlainRun<uint16_t, 1>, PlainRun<uint16_t, 3>}}};

extern const WarpLoops kWarpLoopsSse2;

const WarpLoops& VcPlainWarpLoops()
{
    return kPlainLoops;
}

const WarpLoops& VcWarpLoops()
{
    return LoopsInUse<WarpLoops>({&kPlainLoops, &kWarpLoopsSse2, nullptr, nullptr});
}
