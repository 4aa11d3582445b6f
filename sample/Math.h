#pragma once

#include <cmath>
#include <cstdint>

// Vectors and noise of the sample scene. Only operations that every machine rounds alike are used
// (sums, products, quotients, square roots), none of the C library's transcendental functions, so
// that the series comes out with the same bytes from every build of the program.
//
// x points right, y up, z into the room; lengths are metres, angles are turns (1 = full circle).
namespace sample
{

struct Vec3
{
    float x, y, z;

    float operator[](int axis) const { return axis == 0 ? x : axis == 1 ? y : z; }
    friend Vec3 operator+(Vec3 a, Vec3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
    friend Vec3 operator-(Vec3 a, Vec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
    friend Vec3 operator*(Vec3 a, Vec3 b) { return {a.x * b.x, a.y * b.y, a.z * b.z}; }
    friend Vec3 operator*(Vec3 a, float s) { return {a.x * s, a.y * s, a.z * s}; }
    friend Vec3 operator-(Vec3 a) { return {-a.x, -a.y, -a.z}; }
    void operator+=(Vec3 b) { *this = *this + b; }

    friend float Dot(Vec3 a, Vec3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
    friend float Length(Vec3 a) { return std::sqrt(Dot(a, a)); }
    friend Vec3 Normalize(Vec3 a) { return a * (1.0f / Length(a)); }
    friend float Luminance(Vec3 c) { return 0.2126f * c.x + 0.7152f * c.y + 0.0722f * c.z; }
    friend Vec3 Cross(Vec3 a, Vec3 b)
    {
        return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
    }
};

inline float Saturate(float v)
{
    return v < 0.0f ? 0.0f : v > 1.0f ? 1.0f : v;
}
inline float SmoothStep(float lo, float hi, float v)
{
    const float t = Saturate((v - lo) / (hi - lo));
    return t * t * (3.0f - 2.0f * t);
}
template <typename T>
T Mix(T a, T b, float t)
{
    return a + (b - a) * t;
}
// Largest whole number not above v, for the small values that occur here; inline, which the
// library's own is not on the plainest processors.
inline int FloorInt(float v)
{
    const int whole = int(v);
    return whole - (float(whole) > v ? 1 : 0);
}
inline float Fract(float v)
{
    return v - float(FloorInt(v));
}
// Cosine and sine of an angle in turns, to float accuracy.
struct CosSin
{
    float cos, sin;
};
CosSin Turn(float turns);

// Scrambles 32 bits (a finaliser with full avalanche); 0..1 from a hash.
inline uint32_t Hash(uint32_t h)
{
    h = (h ^ (h >> 16)) * 0x7feb352du;
    h = (h ^ (h >> 15)) * 0x846ca68bu;
    return h ^ (h >> 16);
}
inline uint32_t Hash(uint32_t a, uint32_t b)
{
    return Hash(a ^ Hash(b + 0x9e3779b9u));
}
inline float Unit(uint32_t hash)
{
    return float(hash >> 8) * (1.0f / 16777216.0f);
}

// Smooth noise 0..1 with lattice spacing 1, and the sum of octaves of it. Octaves finer than
// `footprint` (the size of a pixel where the noise is looked at, in the noise's own units) would
// only alias; they fade into their mean.
float Noise(Vec3 p, uint32_t seed);
float Fractal(Vec3 p, uint32_t seed, int octaves, float footprint);

} // namespace sample
