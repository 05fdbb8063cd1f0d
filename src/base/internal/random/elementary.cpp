#include <base/internal/random/elementary.h>

#include <array>
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

// The logarithm is written for one double and for two at once: the same operations in the same
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

Doubles load(const double* two)
{
    Doubles result;
    std::memcpy(&result, two, sizeof result);
    return result;
}

void store(Doubles two, double* to)
{
    std::memcpy(to, &two, sizeof two);
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

/// c0 + c1 x + c2 x^2 + ..., from the highest power on.
constexpr double evaluate(double, double c0)
{
    return c0;
}

template <class... More>
constexpr double evaluate(double x, double c0, More... more)
{
    return evaluate(x, more...) * x + c0;
}

constexpr double ln2High = 6.93147180369123816490e-01; // with 33 bits: exact times an exponent
constexpr double ln2Low = 1.90821492927058770002e-10;

/// A short factor that brings an interval near 1, and its logarithm's negative.
template <class Value>
struct NearOne
{
    Value factor;  ///< in units of 1/128
    Value logHigh; ///< in units of 2^-42
    Value logLow;
};

// A number is 2 to an exponent times a mantissa from 0.6875 to 1.375, so that near 1 the exponent
// is 0. The mantissas' leading digits divide them into intervals.
constexpr std::uint64_t leastMantissa = 0x3FE6000000000000U; // 0.6875
constexpr unsigned int intervalBits = 7;
constexpr unsigned int intervalCount = 1 << intervalBits;

constexpr NearOne<double> makeNearOne(unsigned int interval)
{
    // Below 1 intervals are half as wide. Their middles are in units of 1/512.
    const unsigned int middle = interval < 80 ? 353 + 2 * interval : 194 + 4 * interval;
    const unsigned int nearest = (2 * 128 * 512 / middle + 1) / 2;
    const double n = nearest;
    const auto shorten = [](double x)
    {
        constexpr double unit = 1. / (std::int64_t(1) << 42);
        return static_cast<double>(static_cast<std::int64_t>(x / unit)) * unit;
    };
    // log(128 / n) is 2 artanh(t).
    const double t = (128 - n) / (128 + n);
    const double twice = shorten(2 * t);
    const double twiceLow = (2 * (128 - n) - twice * (128 + n)) / (128 + n);
    const double series = t * t * t *
                          evaluate(t * t, 2. / 3, 2. / 5, 2. / 7, 2. / 9, 2. / 11, 2. / 13, 2. / 15,
                                   2. / 17, 2. / 19, 2. / 21, 2. / 23);
    const double high = shorten(twice + series);
    return {n / 128, high, (twice - high) + series + twiceLow};
}

constexpr std::array<NearOne<double>, intervalCount> makeNearOnes()
{
    std::array<NearOne<double>, intervalCount> result{};
    for (unsigned int i = 0; i < intervalCount; ++i)
        result[i] = makeNearOne(i);
    return result;
}

constexpr std::array<NearOne<double>, intervalCount> nearOnes = makeNearOnes();

const NearOne<double>& getNearOne(std::uint64_t interval)
{
    return nearOnes[static_cast<std::uint32_t>(interval)];
}

NearOne<Doubles> getNearOne(Words intervals)
{
    const NearOne<double>& a = getNearOne(intervals[0]);
    const NearOne<double>& b = getNearOne(intervals[1]);
    return {Doubles{a.factor, b.factor}, Doubles{a.logHigh, b.logHigh},
            Doubles{a.logLow, b.logLow}};
}

/// The logarithm of a normal number, and of 2 to the `moreExponent` times it: P.-T. P. Tang,
/// Table-Driven Implementation of the Logarithm Function in IEEE Floating-Point Arithmetic, ACM
/// Transactions on Mathematical Software 16 (4), 1990. All but the series and the last sums is
/// exact. Inlined, since the constants of two at once are in place only within their loop.
template <class Value>
[[gnu::always_inline]] inline Value logNormal(Value x, double moreExponent)
{
    // As the last bits of 2^52 the exponent becomes a double.
    constexpr std::uint64_t digits = 0x000FFFFFFFFFFFFFU;
    const auto offset = getBits(x) - leastMantissa;
    const Value biased = getDouble(((offset + 0x3FF0000000000000U) >> 52) | 0x4330000000000000U);
    const Value exponent = biased - (4503599627370496. + 1023. - moreExponent);
    const auto nearOne = getNearOne(offset >> (52 - intervalBits) & (intervalCount - 1));
    const auto mantissaBits = (offset & digits) + leastMantissa;
    const Value mantissa = getDouble(mantissaBits);
    const Value mantissaHigh = getDouble(mantissaBits & 0xFFFFFFFF00000000U);
    const Value rHigh = mantissaHigh * nearOne.factor - 1.;
    const Value rLow = (mantissa - mantissaHigh) * nearOne.factor;
    const Value r = rHigh + rLow;

    const Value r2 = r * r;
    const Value series = r2 * (((r * (1. / 3) - 1. / 2) + r2 * (r * (1. / 5) - 1. / 4)) +
                               r2 * r2 * ((r * (1. / 7) - 1. / 6) - r2 * (1. / 8)));
    const Value high = (exponent * ln2High + nearOne.logHigh) + rHigh;
    const Value sum = high + rLow;
    const Value rest = (high - sum) + rLow; // the greater of the two comes first, or is 0
    return sum + ((rest + (exponent * ln2Low + nearOne.logLow)) + series);
}

} // namespace

double log(double x)
{
    constexpr std::uint64_t leastNormal = 0x0010000000000000U, infinite = 0x7FF0000000000000U;
    if (getBits(x) - leastNormal < infinite - leastNormal)
        return logNormal(x, 0.);
    if (!(x > 0.))
        return x == 0. ? -infinity : nan;
    if (x == infinity)
        return x;
    return logNormal(x * 18014398509481984., -54.); // times 2^54 a denormal becomes normal
}

template <class T>
T polarFactor(T x)
{
    const T logarithm = static_cast<T>(log(static_cast<double>(x)));
    return std::sqrt(-2 * logarithm / x);
}

template <class T>
void polarFactors(const double* x, unsigned int count, double* factors)
{
    // Two short loops, since the processor can overlap many turns of each.
    for (unsigned int i = 0; i < count; i += 2)
        store(getRounded<T>(logNormal(load(x + i), 0.)), factors + i);
    for (unsigned int i = 0; i < count; i += 2)
    {
        // A quotient and a root of floats, taken as doubles and rounded, are what floats give.
        const Doubles quotient = getRounded<T>(-2. * load(factors + i) / load(x + i));
        store(getRounded<T>(getRoot(quotient)), factors + i);
    }
    for (unsigned int i = 0; i < count; ++i)
        if (!(x[i] >= std::numeric_limits<double>::min()))
            factors[i] = static_cast<double>(polarFactor(static_cast<T>(x[i])));
}

template float polarFactor(float);
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
