#include "sample/Math.h"

namespace sample
{

// Taylor polynomials on an eighth of a turn; the error stays below a float's last bit.
static double SinSmall(double x)
{
    const double x2 = x * x;
    return x * (1 - x2 / 6 * (1 - x2 / 20 * (1 - x2 / 42 * (1 - x2 / 72 * (1 - x2 / 110)))));
}

static double CosSmall(double x)
{
    const double x2 = x * x;
    return 1 - x2 / 2 * (1 - x2 / 12 * (1 - x2 / 30 * (1 - x2 / 56 * (1 - x2 / 90))));
}

CosSin Turn(float turns)
{
    const double quarters = double(turns) * 4.0;
    const int whole = FloorInt(float(quarters + 0.5));
    const double angle = (quarters - double(whole)) * 1.57079632679489661923;
    const float c = float(CosSmall(angle));
    const float s = float(SinSmall(angle));
    switch (whole & 3)
    {
    case 0: return {c, s};
    case 1: return {-s, c};
    case 2: return {-c, -s};
    default: return {s, -c};
    }
}

void MakeBasis(Vec3 n, Vec3* tangent, Vec3* bitangent)
{
    const Vec3 axis = std::fabs(n.x) < 0.6f ? Vec3{1.0f, 0.0f, 0.0f} : Vec3{0.0f, 1.0f, 0.0f};
    *tangent = Normalize(Cross(axis, n));
    *bitangent = Cross(n, *tangent);
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

    float plane[2];
    for (uint32_t k = 0; k < 2; k++)
    {
        float line[2];
        for (uint32_t j = 0; j < 2; j++)
        {
            const uint32_t row = ((iy + j * 0xd8163841u) ^ (iz + k * 0xcb1ab31fu)) + seed;
            line[j] = Mix(Unit(Hash(ix ^ row)), Unit(Hash((ix + 0x8da6b343u) ^ row)), tx);
        }
        plane[k] = Mix(line[0], line[1], ty);
    }
    return Mix(plane[0], plane[1], tz);
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
