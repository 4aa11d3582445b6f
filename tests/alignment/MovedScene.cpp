#include "tests/alignment/MovedScene.h"

#include <algorithm>
#include <cmath>
#include <random>

struct SceneBlock
{
    double left, top, right, bottom, light;
};

// 0 outside, 1 inside, with an edge two pixels wide.
static double Inside(double at, double low, double high)
{
    return std::clamp((at - low) / 2 + 0.5, 0.0, 1.0) * std::clamp((high - at) / 2 + 0.5, 0.0, 1.0);
}

// From 0.1 to 4, more of the dark than of the bright. Products only: libraries differ in powers.
static double DarkMostly(double x)
{
    return 0.1 + 3.9 * x * x * x;
}

SceneLight BlockScene(CBxSize<int> frame, uint32_t seed)
{
    std::mt19937 numbers(seed);
    const auto below = [&](double limit) { return double(numbers()) / 4294967296.0 * limit; };
    std::vector<std::vector<SceneBlock>> cells(64);
    const double reach = 0.2 * frame.cx, cellX = frame.cx * 1.4 / 8, cellY = frame.cy * 1.4 / 8;
    for (int i = 0; i < 900; ++i)
    {
        const double x = below(1.4 * frame.cx) - reach, y = below(1.4 * frame.cy) - 0.2 * frame.cy;
        const double side = 6 + below(44);
        const SceneBlock block = {x, y, x + side, y + 4 + below(40), DarkMostly(below(1))};
        for (size_t cell = 0; cell < 64; ++cell) // each cell knows what may show in it, in order
        {
            const double left = double(cell % 8) * cellX - reach,
                         top = double(cell / 8) * cellY - 0.2 * frame.cy;
            if (block.right > left - 2 && block.left < left + cellX + 2 && block.bottom > top - 2 &&
                block.top < top + cellY + 2)
                cells[cell].push_back(block);
        }
    }
    return [=](double x, double y)
    {
        const int cx = std::clamp(int((x + reach) / cellX), 0, 7);
        const int cy = std::clamp(int((y + 0.2 * frame.cy) / cellY), 0, 7);
        double light = x < 0.5 * frame.cx ? 0.25 : 1.0;
        for (const SceneBlock& block : cells[size_t(8 * cy + cx)])
            light += (block.light - light) * Inside(x, block.left, block.right) *
                     Inside(y, block.top, block.bottom);
        return light;
    };
}

TestPicture Photograph(const SceneLight& scene, CBxSize<int> frame, const Homography& map,
                       double ev, uint32_t seed, int components, int bits)
{
    const Homography toScene = Inverse(map);
    const double exposure = std::exp2(ev), top = bits == 8 ? 255 : 65535;
    std::mt19937 numbers(seed);
    TestPicture picture(frame.cx, frame.cy, components, bits);
    for (int y = 0; y < frame.cy; ++y)
        for (int x = 0; x < frame.cx; ++x)
        {
            const CBxPoint<double> at = MapPoint(toScene, x, y);
            const double light = scene(at.x, at.y) * exposure * 0.2;
            for (int c = 0; c < components; ++c)
            {
                const double grain = (double(numbers()) + double(numbers())) / 4294967296.0 - 1;
                const double coded =
                    std::sqrt(std::max(light * (1 - 0.15 * c), 0.0)) + grain * 0.012;
                picture.Set(x, y, c, std::floor(std::clamp(coded, 0.0, 1.0) * top + 0.5));
            }
        }
    return picture;
}

Homography MapOfMotion(const Motion& motion, CBxSize<int> frame)
{
    const double angle = motion.degrees * 0.017453292519943295, cx = frame.cx / 2.0,
                 cy = frame.cy / 2.0;
    const double a = motion.scale * std::cos(angle), b = motion.scale * std::sin(angle);
    const Homography turned = {{a, -b, cx - a * cx + b * cy + motion.shiftX, b, a,
                                cy - b * cx - a * cy + motion.shiftY, 0, 0, 1}};
    const double tilt = motion.tilt / (cx * cx + cy * cy);
    const Homography tipped = {{1, 0, 0, 0, 1, 0, tilt, -tilt / 2, 1 - tilt * cx + tilt / 2 * cy}};
    return Compose(turned, tipped);
}

double MapError(const Homography& found, const Homography& meant, CBxSize<int> frame)
{
    double sum = 0;
    int count = 0;
    for (int y = 0; y < frame.cy; y += frame.cy / 8)
        for (int x = 0; x < frame.cx; x += frame.cx / 8, ++count)
        {
            const CBxPoint<double> a = MapPoint(found, x, y), b = MapPoint(meant, x, y);
            sum += (a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y);
        }
    return std::sqrt(sum / count);
}
