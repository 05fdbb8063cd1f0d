// The elementary functions of the random numbers, against the wider type's.

#include <base/internal/random/elementary.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace
{

namespace Elementary = Kr::Elementary;

/// In units in the last place of the exact value.
double getError(double value, long double exact)
{
    int exponent = 0;
    std::frexp(static_cast<double>(exact), &exponent);
    return static_cast<double>(std::fabs(value - exact) / std::ldexp(1.L, exponent - 53));
}

TEST(Elementary, ErrorsAreWithinTheirBounds)
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> unit(0, 1), wide(-700, 700), near(0.5, 2),
        exponent(-40, -4);
    const long double turn = 2 * std::acos(-1.L);
    double logError = 0, expError = 0, cubeError = 0, sinError = 0;
    for (int i = 0; i < 300000; ++i)
    {
        const double u = unit(random);
        for (const double x : {u, near(random), std::exp(wide(random)),
                               1 + std::exp2(exponent(random)), 1 - std::exp2(exponent(random))})
            logError = std::max(
                logError, getError(Elementary::log(x), std::log(static_cast<long double>(x))));
        for (const double x : {-u, wide(random)})
            expError = std::max(
                expError, getError(Elementary::exp(x), std::exp(static_cast<long double>(x))));
        cubeError =
            std::max(cubeError, getError(Elementary::cube(u), static_cast<long double>(u) * u * u));
        const Elementary::SinCos found = Elementary::sinCosOfTurns(u);
        // Near the zeros the wider type's argument is not exact enough to compare the last bits.
        sinError =
            std::max({sinError, std::fabs(static_cast<double>(found.sin - std::sin(turn * u))),
                      std::fabs(static_cast<double>(found.cos - std::cos(turn * u)))});
    }
    EXPECT_LT(logError, 0.53);
    EXPECT_LT(expError, 0.9);
    EXPECT_LT(cubeError, 0.502);
    EXPECT_LT(sinError, 1.2e-16);
}

TEST(Elementary, EndsOfTheRanges)
{
    const double inf = std::numeric_limits<double>::infinity();
    const double least = std::numeric_limits<double>::denorm_min();
    EXPECT_EQ(Elementary::log(0), -inf);
    EXPECT_EQ(Elementary::log(inf), inf);
    EXPECT_EQ(Elementary::log(1), 0);
    EXPECT_NEAR(Elementary::log(least), std::log(least), 1e-12);
    EXPECT_TRUE(std::isnan(Elementary::log(-1)));
    EXPECT_TRUE(std::isnan(Elementary::exp(std::nan(""))));
    EXPECT_EQ(Elementary::exp(-inf), 0);
    EXPECT_EQ(Elementary::exp(inf), inf);
    EXPECT_EQ(Elementary::exp(-745), least);
    for (const double turns : {0., 0.25, 0.5, 0.75, 1.})
    {
        const Elementary::SinCos found = Elementary::sinCosOfTurns(turns);
        EXPECT_EQ(std::fabs(found.sin) + std::fabs(found.cos), 1) << turns;
        EXPECT_EQ(found.cos, turns == 0 || turns == 1 ? 1 : turns == 0.5 ? -1 : 0) << turns;
    }
}

} // namespace
