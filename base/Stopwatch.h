#pragma once

#include <chrono>

// Runs from the moment that it is made.
class Stopwatch
{
public:
    double Seconds() const
    {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }

private:
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};
