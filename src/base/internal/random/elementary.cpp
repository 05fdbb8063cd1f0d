#include <base/internal/random/elementary.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace Kr::Elementary
{

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

// What follows is written for one double and for two at once: the same operations in the same
// order, and so the same bits.

using Doubles [[gnu::vector_size(16)]] = double;
using Words [[gnu::vector_size(16)]] = std::uint64_t;

template <class To, class From>
To getSameBits(From from)
{
    static_assert(sizeof(To) == sizeof from);
    To to;
    std::memcpy(&to, &from, sizeof to);
    return to;
}

std::uint64_t getBits(double x)
{
    return getSameBits<std::uint64_t>(x);
}

Words getBits(Doubles x)
{
    return getSameBits<Words>(x);
}

double getDouble(std::uint64_t bits)
{
    return getSameBits<double>(bits);
}

Doubles getDouble(Words bits)
{
    return getSameBits<Doubles>(bits);
}

#if defined(__SSE2__)

Doubles getRoot(Doubles x)
{
    return _mm_sqrt_pd(x);
}

/// The values of T that are next to those.
template <class T>
Doubles getRounded(Doubles x)
{
    if constexpr (std::is_same_v<T, float>)
        return _mm_cvtps_pd(_mm_cvtpd_ps(x));
    return x;
}

#else

Doubles getRoot(Doubles x)
{
    return {std::sqrt(x[0]), std::sqrt(x[1])};
}

template <class T>
Doubles getRounded(Doubles x)
{
    return {static_cast<T>(x[0]), static_cast<T>(x[1])};
}

#endif

/// 2 to the n, for normal results.
double getPower2(int n)
{
    return getDouble(static_cast<std::uint64_t>(n + 1023) << 52);
}

/// A value and what rounding left of it.
template <class Value>
struct Pair
{
    Value high;
    Value low;
};

/// Dekker's exact product, without a fused operation: T. J. Dekker, A Floating-Point Technique for
/// Extending the Available Precision, Numerische Mathematik 18, 1971.
template <class Value>
Pair<Value> multiply(Value a, Value b)
{
    const auto split = [](Value x) -> Pair<Value>
    {
        const Value big = 134217729. * x; // 2^27 + 1
        const Value high = big - (big - x);
        return {high, x - high};
    };
    const Pair<Value> x = split(a);
    const Pair<Value> y = split(b);
    const Value product = a * b;
    return {product,
            ((x.high * y.high - product) + x.high * y.low + x.low * y.high) + x.low * y.low};
}

constexpr double ln2High = 6.93147180369123816490e-01; // with 33 bits: exact times an exponent
constexpr double ln2Low = 1.90821492927058770002e-10;

/// c0 + c1 x + c2 x^2 + ..., from the highest power on.
template <class Value>
inline Value evaluate(Value, double c0)
{
    return c0 + Value{};
}

template <class Value, class... More>
inline Value evaluate(Value x, double c0, More... more)
{
    return evaluate(x, more...) * x + c0;
}

/// log((1 + f) / 1) as 2 artanh(f / (2 + f)), f from sqrt(1/2) - 1 to sqrt(2) - 1.
template <class Value>
Pair<Value> log1p(Value f)
{
    // The quotient s with what its rounding left, since twice it is nearly all of the result.
    const Value divisor = 2. + f;
    const Value divisorLow = f - (divisor - 2.);
    const Value s = f / divisor;
    const Pair<Value> product = multiply(s, divisor);
    const Value sLow = ((f - product.high) - product.low - s * divisorLow) / divisor;
    const Value z = s * s;
    return {2. * s, 2. * sLow + s * z *
                                    evaluate(z, 2. / 3, 2. / 5, 2. / 7, 2. / 9, 2. / 11, 2. / 13,
                                             2. / 15, 2. / 17, 2. / 19, 2. / 21, 2. / 23)};
}

/// The logarithm of a normal number, and of 2 to the `moreExponent` times it.
template <class Value>
Value logNormal(Value x, double moreExponent)
{
    // The exponent that leaves a factor from sqrt(1/2) to sqrt(2); as the last bits of 2^52 it
    // becomes a double.
    const auto bits = getBits(x) + (0x3FF0000000000000U - 0x3FE6A09E667F3BCDU);
    const Value biased = getDouble((bits >> 52) | 0x4330000000000000U);
    const Value exponent = biased - (4503599627370496. + 1023.) + moreExponent;
    const Value factor = getDouble((bits & 0x000FFFFFFFFFFFFFU) + 0x3FE6A09E667F3BCDU);
    const Pair<Value> part = log1p(factor - 1.);
    const Value high = exponent * ln2High;
    const Value sum = high + part.high;
    const Value rest = (high - sum) + part.high; // the greater of the two comes first, or is 0
    return sum + (rest + (part.low + exponent * ln2Low));
}

} // namespace

double log(double x)
{
    if (!(x > 0.))
        return x == 0. ? -infinity : nan;
    if (x == infinity)
        return x;
    if (x < std::numeric_limits<double>::min())
        return logNormal(x * 18014398509481984., -54.); // times 2^54 a denormal becomes normal
    return logNormal(x, 0.);
}

template <class T>
T polarFactor(double x)
{
    const T logarithm = static_cast<T>(log(x));
    return std::sqrt(-2 * logarithm / static_cast<T>(x));
}

/// A quotient and a root of floats, taken as doubles and rounded again, are what floats give.
template <class T>
void polarFactors(const double* x, unsigned int count, double* factors)
{
    for (unsigned int i = 0; i < count; i += 2)
    {
        Doubles two;
        std::memcpy(&two, x + i, sizeof two);
        const Doubles quotient = -2. * getRounded<T>(logNormal(two, 0.)) / two;
        const Doubles root = getRounded<T>(getRoot(getRounded<T>(quotient)));
        std::memcpy(factors + i, &root, sizeof root);
    }
}

template float polarFactor(double);
template double polarFactor(double);
template void polarFactors<float>(const double*, unsigned int, double*);
template void polarFactors<double>(const double*, unsigned int, double*);

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
    const double factor =
        1. + (r + (rLow + r * r *
                              evaluate(r, 1. / 2, 1. / 6, 1. / 24, 1. / 120, 1. / 720, 1. / 5040,
                                       1. / 40320, 1. / 362880, 1. / 3628800, 1. / 39916800,
                                       1. / 479001600, 1. / 6227020800., 1. / 87178291200.)));
    const int half = exponent / 2; // in two steps, for results that are denormal or nearly infinite
    return factor * getPower2(half) * getPower2(exponent - half);
}

double cube(double x)
{
    const Pair<double> square = multiply(x, x);
    const Pair<double> product = multiply(square.high, x);
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
    const Pair<double> angle = {r * halfPi, multiply(r, halfPi).low + r * halfPiLow};
    const double z = angle.high * angle.high;
    const double sin =
        angle.high +
        (angle.low + angle.high * z *
                         evaluate(z, -1. / 6, 1. / 120, -1. / 5040, 1. / 362880, -1. / 39916800,
                                  1. / 6227020800., -1. / 1307674368000., 1. / 355687428096000.));
    const double square = multiply(angle.high, angle.high).low;
    const double cosHigh = 1. - 0.5 * z;
    const double cos =
        cosHigh + (((1. - cosHigh) - 0.5 * z) - 0.5 * square - angle.high * angle.low +
                   z * z *
                       evaluate(z, 1. / 24, -1. / 720, 1. / 40320, -1. / 3628800, 1. / 479001600,
                                -1. / 87178291200., 1. / 20922789888000.));
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
