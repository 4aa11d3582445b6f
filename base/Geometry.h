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

template <typename T>
constexpr bool SameRect(const CBxRect<T>& a, const CBxRect<T>& b)
{
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

template <typename T>
constexpr bool IsEmptyRect(const CBxRect<T>& rect)
{
    return rect.right <= rect.left || rect.bottom <= rect.top;
}
