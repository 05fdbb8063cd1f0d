#include <base/internal/random/elementary.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace Kr::Elementary
{

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

std::uint64_t getBits(double x)
{
    std::uint64_t bits;
    std::memcpy(&bits, &x, sizeof bits);
    return bits;
}

double getDouble(std::uint64_t bits)
{
    double x;
    std::memcpy(&x, &bits, sizeof x);
    return x;
}

/// 2 to the n, for normal results.
double getPower2(int n)
{
    return getDouble(static_cast<std::uint64_t>(n + 1023) << 52);
}

/// A value and what rounding left of it.
struct Pair
{
    double high;
    double low;
};

/// Dekker's exact product, without a fused operation: T. J. Dekker, A Floating-Point Technique for
/// Extending the Available Precision, Numerische Mathematik 18, 1971.
Pair multiply(double a, double b)
{
    const auto split = [](double x) -> Pair
    {
        const double big = 134217729. * x; // 2^27 + 1
        const double high = big - (big - x);
        return {high, x - high};
    };
    const Pair x = split(a);
    const Pair y = split(b);
    const double product = a * b;
    return {product,
            ((x.high * y.high - product) + x.high * y.low + x.low * y.high) + x.low * y.low};
}

constexpr double ln2High = 6.93147180369123816490e-01; // with 33 bits: exact times an exponent
constexpr double ln2Low = 1.90821492927058770002e-10;

template <int Count>
double evaluate(const double (&coefficients)[Count], double x)
{
    double sum = coefficients[Count - 1];
    for (int i = Count - 2; i >= 0; --i)
        sum = sum * x + coefficients[i];
    return sum;
}

/// log((1 + f) / 1) as 2 artanh(f / (2 + f)), f from sqrt(1/2) - 1 to sqrt(2) - 1.
Pair log1p(double f)
{
    // The quotient s with what its rounding left, since twice it is nearly all of the result.
    const double divisor = 2. + f;
    const double divisorLow = f - (divisor - 2.);
    const double s = f / divisor;
    const Pair product = multiply(s, divisor);
    const double sLow = ((f - product.high) - product.low - s * divisorLow) / divisor;
    static constexpr double series[] = {2. / 3,  2. / 5,  2. / 7,  2. / 9,  2. / 11, 2. / 13,
                                        2. / 15, 2. / 17, 2. / 19, 2. / 21, 2. / 23};
    const double z = s * s;
    return {2. * s, 2. * sLow + s * z * evaluate(series, z)};
}

} // namespace

double log(double x)
{
    if (!(x > 0.))
        return x == 0. ? -infinity : nan;
    if (x == infinity)
        return x;
    int exponent = 0;
    if (x < std::numeric_limits<double>::min())
    {
        x *= 18014398509481984.; // 2^54: a denormal becomes normal
        exponent = -54;
    }
    // The exponent that leaves a factor from sqrt(1/2) to sqrt(2).
    const std::uint64_t bits = getBits(x) + (0x3FF0000000000000U - 0x3FE6A09E667F3BCDU);
    exponent += static_cast<int>(bits >> 52) - 1023;
    const double factor = getDouble((bits & 0x000FFFFFFFFFFFFFU) + 0x3FE6A09E667F3BCDU);
    const Pair part = log1p(factor - 1.);
    const double high = exponent * ln2High;
    const double sum = high + part.high;
    // What is left of the sum: the greater of the two comes first, or is 0.
    const double rest = high != 0. ? (high - sum) + part.high : 0.;
    return sum + (rest + (part.low + exponent * ln2Low));
}

double exp(double x)
{
    if (!(x < 709.8))
        return x >= 709.8 ? infinity : nan;
    if (x < -745.2)
        return 0.;
    const double scaled = x * 1.44269504088896338700; // 1 / ln 2
    const int exponent = static_cast<int>(scaled + (scaled < 0. ? -0.5 : 0.5));
    const double high = x - exponent * ln2High;
    const double low = exponent * ln2Low;
    const double r = high - low;
    const double rLow = (high - r) - low;
    static constexpr double series[] = {
        1. / 2,         1. / 6,           1. / 24,          1. / 120,     1. / 720,
        1. / 5040,      1. / 40320,       1. / 362880,      1. / 3628800, 1. / 39916800,
        1. / 479001600, 1. / 6227020800., 1. / 87178291200.};
    const double factor = 1. + (r + (rLow + r * r * evaluate(series, r)));
    const int half = exponent / 2; // in two steps, for results that are denormal or nearly infinite
    return factor * getPower2(half) * getPower2(exponent - half);
}

double cube(double x)
{
    const Pair square = multiply(x, x);
    const Pair product = multiply(square.high, x);
    return product.high + (product.low + square.low * x);
}

SinCos sinCosOfTurns(double turns)
{
    // Eighths of a turn, of which the even ones go through the axes: what is left is at most a half
    // of a quarter turn to either side of an axis, and all of that is exact.
    const double nearest = std::floor(turns * 4. + 0.5);
    const double r = turns * 4. - nearest;
    constexpr double halfPi = 1.57079632679489661923;
    constexpr double halfPiLow = 6.12323399573676603587e-17;
    const Pair angle = {r * halfPi, multiply(r, halfPi).low + r * halfPiLow};
    const double z = angle.high * angle.high;
    static constexpr double sinSeries[] = {
        -1. / 6,        1. / 120,         -1. / 5040,           1. / 362880,
        -1. / 39916800, 1. / 6227020800., -1. / 1307674368000., 1. / 355687428096000.};
    static constexpr double cosSeries[] = {
        1. / 24,        -1. / 720,          1. / 40320,          -1. / 3628800,
        1. / 479001600, -1. / 87178291200., 1. / 20922789888000.};
    const double sin = angle.high + (angle.low + angle.high * z * evaluate(sinSeries, z));
    const double square = multiply(angle.high, angle.high).low;
    const double cosHigh = 1. - 0.5 * z;
    const double cos = cosHigh + (((1. - cosHigh) - 0.5 * z) - 0.5 * square -
                                  angle.high * angle.low + z * z * evaluate(cosSeries, z));
    switch (static_cast<int>(nearest) & 3)
    {
    case 0:
        return {sin, cos};
    case 1:
        return {cos, -sin};
    case 2:
        return {-sin, -cos};
    default:
        return {-cos, sin};
    }
}

} // namespace Kr::Elementary
