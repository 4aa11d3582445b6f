#pragma once

// Integer geometry shared by pictures, view and tools. Coordinates are pixels.

template <typename T>
struct CBxPoint
{
    T x, y;
};

template <typename T>
struct CBxSize
{
    T cx, cy; // width, height
};

// Right and bottom are exclusive: a whole picture is {0, 0, width, height}.
template <typename T>
struct CBxRect
{
    T left, top, right, bottom;
};
