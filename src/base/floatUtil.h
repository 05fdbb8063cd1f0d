#pragma once

/// @file
/// Floating-point helpers, each for `float` and for `double`: comparison within a tolerance,
/// rounding, classification, and the runtime library's functions under one roof, so that generic
/// code gets the overload of its own type.
/// @code
/// double angle = 0.;
/// while (!Kr::FloatUtil::isEqual(angle, 1.)) // ten times 0.1 is not exactly 1
///     angle += 0.1;
/// const float opacity = Kr::FloatUtil::smoothStep(0.f, 1.f, 0.25f, 0.f, 255.f); // 39.84375
/// @endcode
/// A function computes in the type of its arguments, except where it says otherwise. Nothing is
/// checked: NaN, infinities and domain errors come back as the runtime library gives them.
///
/// Pitfalls:
/// - the tolerance is absolute: 1e-4 for `float` and 1e-7 for `double`, whatever the magnitude;
/// - tolerant equality is not transitive, and a NaN is neither equal to, above nor below anything;
/// - `round` takes halves up (-2.5 becomes -2), unlike `std::round`; `sgn(0)` is 1.
///
/// Stateless: every function may be called by any thread.

#include <base/internal/numeric/rounded.h>
#include <base/krBaseApi.h>
#include <base/ltFPClass.h>

#include <cmath>
#include <cstdint>

namespace Kr
{

class KR_BASE_API FloatUtil
{
public:
    /// @name Tolerance
    /// The value only selects the overload.
    /// @{
    static float getCompareEps(float) noexcept { return 1e-4F; }
    static double getCompareEps(double) noexcept { return 1e-7; }

    /// The decimal digits that the tolerance stands for, for printing.
    static int getCompareEpsPrecision(float) noexcept { return 5; }
    static int getCompareEpsPrecision(double) noexcept { return 8; }
    /// @}

    /// @name Comparison within a tolerance
    /// All tests are strict, so at a difference of exactly `eps` the values are not equal, and
    /// `isSmallerEqual` and `isGreaterEqual` are false on the far side.
    /// @{

    /// |a - b| < eps
    static bool isEqual(float a, float b, float eps) noexcept
    {
        return abs(Rounded::subtract(a, b)) < eps;
    }
    static bool isEqual(double a, double b, double eps) noexcept
    {
        return abs(Rounded::subtract(a, b)) < eps;
    }

    /// a > b + eps
    static bool isGreater(float a, float b, float eps) noexcept { return a > Rounded::add(b, eps); }
    static bool isGreater(double a, double b, double eps) noexcept
    {
        return a > Rounded::add(b, eps);
    }

    /// a > b - eps
    static bool isGreaterEqual(float a, float b, float eps) noexcept
    {
        return a > Rounded::subtract(b, eps);
    }
    static bool isGreaterEqual(double a, double b, double eps) noexcept
    {
        return a > Rounded::subtract(b, eps);
    }

    /// a < b - eps
    static bool isSmaller(float a, float b, float eps) noexcept
    {
        return a < Rounded::subtract(b, eps);
    }
    static bool isSmaller(double a, double b, double eps) noexcept
    {
        return a < Rounded::subtract(b, eps);
    }

    /// a < b + eps
    static bool isSmallerEqual(float a, float b, float eps) noexcept
    {
        return a < Rounded::add(b, eps);
    }
    static bool isSmallerEqual(double a, double b, double eps) noexcept
    {
        return a < Rounded::add(b, eps);
    }
    /// @}

    /// @name Comparison within the type's own tolerance
    /// @{
    static bool isEqual(float a, float b) noexcept { return isEqual(a, b, getCompareEps(a)); }
    static bool isEqual(double a, double b) noexcept { return isEqual(a, b, getCompareEps(a)); }
    static bool isGreater(float a, float b) noexcept { return isGreater(a, b, getCompareEps(a)); }
    static bool isGreater(double a, double b) noexcept { return isGreater(a, b, getCompareEps(a)); }
    static bool isGreaterEqual(float a, float b) noexcept
    {
        return isGreaterEqual(a, b, getCompareEps(a));
    }
    static bool isGreaterEqual(double a, double b) noexcept
    {
        return isGreaterEqual(a, b, getCompareEps(a));
    }
    static bool isSmaller(float a, float b) noexcept { return isSmaller(a, b, getCompareEps(a)); }
    static bool isSmaller(double a, double b) noexcept { return isSmaller(a, b, getCompareEps(a)); }
    static bool isSmallerEqual(float a, float b) noexcept
    {
        return isSmallerEqual(a, b, getCompareEps(a));
    }
    static bool isSmallerEqual(double a, double b) noexcept
    {
        return isSmallerEqual(a, b, getCompareEps(a));
    }
    /// @}

    /// @name Sign and magnitude
    /// @{
    static float abs(float x) noexcept { return std::fabs(x); }
    static double abs(double x) noexcept { return std::fabs(x); }

    /// 1 for zero (either sign) and above; -1 below, and for a NaN.
    static float sgn(float x) noexcept { return x >= 0.F ? 1.F : -1.F; }
    static double sgn(double x) noexcept { return x >= 0. ? 1. : -1.; }
    /// @}

    /// @name Rounding
    /// @{

    /// floor(x + 0.5): halves go up. The sum is rounded to double, so the largest double below 0.5
    /// gives 1; for a `float` it is exact.
    static inline float round(float x) noexcept;
    static inline double round(double x) noexcept;
    static float floor(float x) noexcept { return std::floor(x); }
    static double floor(double x) noexcept { return std::floor(x); }
    static float ceil(float x) noexcept { return std::ceil(x); }
    static double ceil(double x) noexcept { return std::ceil(x); }
    /// @}

    /// @name Arithmetic
    /// @{

    /// The remainder of x / y truncated, with the sign of x.
    static float mod(float x, float y) noexcept { return std::fmod(x, y); }
    static double mod(double x, double y) noexcept { return std::fmod(x, y); }
    static float pow(float x, float y) noexcept;
    static double pow(double x, double y) noexcept;
    static float sqrt(float x) noexcept { return Rounded::sqrt(x); }
    static double sqrt(double x) noexcept { return Rounded::sqrt(x); }

    /// sqrt(x * x + y * y) as it stands: the squares of large values overflow to infinity and those
    /// of small ones vanish. Several times faster than `std::hypot`, which guards against both.
    static float hypot(float x, float y) noexcept;
    static double hypot(double x, double y) noexcept;
    /// @}

    /// @name Trigonometry, in radians
    /// @{
    static float sin(float x) noexcept;
    static double sin(double x) noexcept;
    static float cos(float x) noexcept;
    static double cos(double x) noexcept;
    static float tan(float x) noexcept;
    static double tan(double x) noexcept;
    static float asin(float x) noexcept;
    static double asin(double x) noexcept;
    static float acos(float x) noexcept;
    static double acos(double x) noexcept;
    static float atan(float x) noexcept;
    static double atan(double x) noexcept;
    static float atan2(float y, float x) noexcept;
    static double atan2(double y, double x) noexcept;
    /// @}

    /// @name Exponentials
    /// @{
    static float exp(float x) noexcept;
    static double exp(double x) noexcept;
    static float log(float x) noexcept;
    static double log(double x) noexcept;
    static float log10(float x) noexcept;
    static double log10(double x) noexcept;
    /// @}

    /// @name Classification; see `LtFPClass`
    /// @{
    static bool isnan(float x) noexcept { return LtFPClass::isNaN(x); }
    static bool isnan(double x) noexcept { return LtFPClass::isNaN(x); }
    static bool isinf(float x) noexcept { return LtFPClass::isInfinity(x); }
    static bool isinf(double x) noexcept { return LtFPClass::isInfinity(x); }
    static bool isfinite(float x) noexcept { return LtFPClass::isFinite(x); }
    static bool isfinite(double x) noexcept { return LtFPClass::isFinite(x); }
    /// @}

    /// @name Angles
    /// x * 180 / pi and x * pi / 180, in double; a `float` result is rounded once.
    /// @{
    static float radiansToDegrees(float x) noexcept
    {
        return static_cast<float>(radiansToDegrees(static_cast<double>(x)));
    }
    static double radiansToDegrees(double x) noexcept
    {
        return Rounded::divide(Rounded::multiply(x, 180.), _pi);
    }
    static float degreesToRadians(float x) noexcept
    {
        return static_cast<float>(degreesToRadians(static_cast<double>(x)));
    }
    static double degreesToRadians(double x) noexcept
    {
        return Rounded::divide(Rounded::multiply(x, _pi), 180.);
    }
    /// @}

    /// Goes from `from` (x below edge0) to `to` (x at or above edge1) along a cubic that is level
    /// at both ends.
    static float smoothStep(float edge0, float edge1, float x, float from, float to) noexcept;

private:
    static constexpr double _pi = 3.141592653589793;
};

} // namespace Kr

#include <base/floatUtil.inline>
