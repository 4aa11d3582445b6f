#include <gtest/gtest.h>

#include <cmath>

namespace
{
#include "fusion/FusionMath.inl"

// Distance from the true value in units of the last place of a float near it.
double UlpsFrom(float value, double truth)
{
    int exponent;
    std::frexp(truth, &exponent);
    return std::fabs(double(value) - truth) / std::ldexp(1.0, exponent - 24);
}
} // namespace

TEST(FusionMath, ExpStaysWithinTwoUlps)
{
    double worst = 0.0;
    for (double x = -86.9; x < 20.0; x += 0.000217)
        worst = std::max(worst, UlpsFrom(Exp(float(x)), std::exp(double(float(x)))));
    EXPECT_LE(worst, 2.0);
    EXPECT_EQ(Exp(0.0f), 1.0f);
    EXPECT_LT(Exp(-1e9f), 2e-38f);
}

TEST(FusionMath, PowerStaysWithinTwoUlps)
{
    double worst = 0.0;
    for (double x = 1.2e-38; x < 1e30; x *= 1.00011)
        worst = std::max(worst, UlpsFrom(Pow016(float(x)), std::pow(double(float(x)), 0.16)));
    for (double x = 0.4; x < 3.0; x += 0.0000071)
        worst = std::max(worst, UlpsFrom(Pow016(float(x)), std::pow(double(float(x)), 0.16)));
    EXPECT_LE(worst, 2.0);
    EXPECT_EQ(Pow016(1.0f), 1.0f);
}
