#pragma once

// Affine map between a source picture and a destination (screen) raster:
//   dx = a * sx + b * sy + c,   dy = d * sx + e * sy + f
// Coordinates are corner coordinates: pixel (x, y) covers x..x+1, y..y+1 and has its centre at
// (x + 0.5, y + 0.5); the two MapPoint members add no half pixel of their own.
class CBxPicMap
{
public:
    // The source centre lands on the destination centre, source distances are multiplied by scale
    // and the picture is turned clockwise on the screen by angle (radians). A scale of zero, or one
    // that is no number, maps like the smallest usable scale instead of dividing by zero.
    void Compute(double dstCentreX, double dstCentreY, double srcCentreX, double srcCentreY,
                 double angle, double scale);

    // Picture coordinates to screen coordinates, rounded to nearest (halves up) and saturated to
    // what an int can hold, since the zoom has no limit. The reverse of MapPointDstToSrc for every
    // screen pixel.
    void MapPointSrcToDst(int* dx, int* dy, double sx, double sy) const;

    // Top-left corner of a screen pixel to picture coordinates.
    void MapPointDstToSrc(double* sx, double* sy, int dx, int dy) const;

    // Inverse map in full precision: sx = inverse[0] * dx + inverse[1] * dy + inverse[2], sy from
    // the other three. What the transforms walk along.
    const double* Inverse() const { return inverse; }

private:
    double forward[6] = {1.0, 0.0, 0.0, 0.0, 1.0, 0.0};
    double inverse[6] = {1.0, 0.0, 0.0, 0.0, 1.0, 0.0};
};
