#include "picture/PicMap.h"

#include <climits>
#include <cmath>

// Small enough for any picture to vanish, large enough for its reciprocal to stay finite.
static constexpr double kSmallestScale = 1e-9;

static int RoundSaturated(double value)
{
    const double rounded = std::floor(value + 0.5);
    if (!(rounded > double(INT_MIN)))
        return INT_MIN; // also what is not a number
    return rounded < double(INT_MAX) ? int(rounded) : INT_MAX;
}

void CBxPicMap::Compute(double dstCentreX, double dstCentreY, double srcCentreX, double srcCentreY,
                        double angle, double scale)
{
    if (!(scale >= kSmallestScale))
        scale = kSmallestScale;
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);

    forward[0] = scale * cosine;
    forward[1] = -scale * sine;
    forward[3] = scale * sine;
    forward[4] = scale * cosine;
    forward[2] = dstCentreX - (forward[0] * srcCentreX + forward[1] * srcCentreY);
    forward[5] = dstCentreY - (forward[3] * srcCentreX + forward[4] * srcCentreY);

    inverse[0] = cosine / scale;
    inverse[1] = sine / scale;
    inverse[3] = -sine / scale;
    inverse[4] = cosine / scale;
    inverse[2] = srcCentreX - (inverse[0] * dstCentreX + inverse[1] * dstCentreY);
    inverse[5] = srcCentreY - (inverse[3] * dstCentreX + inverse[4] * dstCentreY);
}

void CBxPicMap::MapPointSrcToDst(int* dx, int* dy, double sx, double sy) const
{
    *dx = RoundSaturated(forward[0] * sx + forward[1] * sy + forward[2]);
    *dy = RoundSaturated(forward[3] * sx + forward[4] * sy + forward[5]);
}

void CBxPicMap::MapPointDstToSrc(double* sx, double* sy, int dx, int dy) const
{
    *sx = inverse[0] * dx + inverse[1] * dy + inverse[2];
    *sy = inverse[3] * dx + inverse[4] * dy + inverse[5];
}
