#include "sample/Math.h"

namespace sample
{

CosSin Turn(float turns)
{
    const double quarters = double(turns) * 4.0;
    const int whole = FloorInt(float(quarters + 0.5));
    const double angle = (quarters - double(whole)) * 1.57079632679489661923;
    // Taylor polynomials on an eighth of a turn; the error stays below a float's last bit.
    const double a2 = angle * angle;
    const float c =
        float(1 - a2 / 2 * (1 - a2 / 12 * (1 - a2 / 30 * (1 - a2 / 56 * (1 - a2 / 90)))));
    const float s = float(
        angle * (1 - a2 / 6 * (1 - a2 / 20 * (1 - a2 / 42 * (1 - a2 / 72 * (1 - a2 / 110))))));
    const CosSin ways[4] = {{c, s}, {-s, c}, {-c, -s}, {s, -c}};
    return ways[whole & 3];
}

static float Fade(float t)
{
    return t * t * t * (t * (t * 6.0f - 15.0f) + 10.0f);
}

float Noise(Vec3 p, uint32_t seed)
{
    const int cx = FloorInt(p.x), cy = FloorInt(p.y), cz = FloorInt(p.z);
    const float tx = Fade(p.x - float(cx)), ty = Fade(p.y - float(cy)), tz = Fade(p.z - float(cz));
    const uint32_t ix = uint32_t(cx) * 0x8da6b343u;
    const uint32_t iy = uint32_t(cy) * 0xd8163841u;
    const uint32_t iz = uint32_t(cz) * 0xcb1ab31fu;

    const auto line = [&](uint32_t row)
    { return Mix(Unit(Hash(ix ^ row)), Unit(Hash((ix + 0x8da6b343u) ^ row)), tx); };
    const auto plane = [&](uint32_t slice)
    { return Mix(line((iy ^ slice) + seed), line(((iy + 0xd8163841u) ^ slice) + seed), ty); };
    return Mix(plane(iz), plane(iz + 0xcb1ab31fu), tz);
}

float Fractal(Vec3 p, uint32_t seed, int octaves, float footprint)
{
    float sum = 0.0f, weight = 0.5f, total = 0.0f;
    for (int i = 0; i < octaves; i++)
    {
        const float visible = SmoothStep(0.9f, 0.3f, footprint);
        total += weight;
        sum += weight * (visible > 0.0f ? Mix(0.5f, Noise(p, seed + uint32_t(i)), visible) : 0.5f);
        p = p * 2.03f + Vec3{17.3f, 9.1f, 5.7f};
        footprint *= 2.03f;
        weight *= 0.5f;
    }
    return sum / total;
}

} // namespace sample
