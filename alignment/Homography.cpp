#include "alignment/Homography.h"

#include <algorithm>
#include <cmath>

CBxPoint<double> MapPoint(const Homography& map, double x, double y)
{
    const double* m = map.m;
    const double w = m[6] * x + m[7] * y + m[8];
    return {(m[0] * x + m[1] * y + m[2]) / w, (m[3] * x + m[4] * y + m[5]) / w};
}

Homography Compose(const Homography& outer, const Homography& inner)
{
    Homography product;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
        {
            double sum = 0;
            for (int i = 0; i < 3; ++i)
                sum += outer.m[3 * row + i] * inner.m[3 * i + column];
            product.m[3 * row + column] = sum;
        }
    return product;
}

Homography Inverse(const Homography& map)
{
    const double* m = map.m;
    Homography adjoint;
    double* a = adjoint.m;
    a[0] = m[4] * m[8] - m[5] * m[7];
    a[1] = m[2] * m[7] - m[1] * m[8];
    a[2] = m[1] * m[5] - m[2] * m[4];
    a[3] = m[5] * m[6] - m[3] * m[8];
    a[4] = m[0] * m[8] - m[2] * m[6];
    a[5] = m[2] * m[3] - m[0] * m[5];
    a[6] = m[3] * m[7] - m[4] * m[6];
    a[7] = m[1] * m[6] - m[0] * m[7];
    a[8] = m[0] * m[4] - m[1] * m[3];
    const double determinant = m[0] * a[0] + m[1] * a[3] + m[2] * a[6];
    if (!(std::abs(determinant) > 1e-12))
        return {};
    for (double& value : adjoint.m)
        value /= determinant;
    return adjoint;
}

Homography OnFinerGrid(const Homography& map, double times)
{
    Homography finer = map;
    finer.m[2] *= times;
    finer.m[5] *= times;
    finer.m[6] /= times;
    finer.m[7] /= times;
    return finer;
}

Homography Translation(double x, double y)
{
    Homography shift;
    shift.m[2] = x;
    shift.m[5] = y;
    return shift;
}

double LargestCornerMotion(const Homography& map, CBxSize<int> frame)
{
    double largest = 0;
    for (const double x : {0.0, double(frame.cx - 1)})
        for (const double y : {0.0, double(frame.cy - 1)})
        {
            const CBxPoint<double> to = MapPoint(map, x, y);
            const double dx = to.x - x, dy = to.y - y;
            largest = std::max(largest, std::sqrt(dx * dx + dy * dy));
        }
    return largest;
}

double MeanMotion(const Homography& map, CBxSize<int> frame)
{
    constexpr int kCells = 8; // a map bends too little for what lies between to matter
    double sum = 0;
    for (int j = 0; j < kCells; ++j)
        for (int i = 0; i < kCells; ++i)
        {
            const double x = (i + 0.5) * frame.cx / kCells - 0.5;
            const double y = (j + 0.5) * frame.cy / kCells - 0.5;
            const CBxPoint<double> at = MapPoint(map, x, y);
            sum += (at.x - x) * (at.x - x) + (at.y - y) * (at.y - y);
        }
    return std::sqrt(sum / (kCells * kCells));
}
