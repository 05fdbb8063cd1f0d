#pragma once

/// @file
/// What kind of floating-point value it is. A `float` is widened to `double` first, which keeps its
/// class.
/// @code
/// const double ratio = std::sqrt(-1.);
/// if (Kr::LtFPClass::isNaN(ratio))
///     std::cout << "no real root\n";
/// @endcode
/// Stateless: every function may be called by any thread.

#include <cmath>

namespace Kr
{

class LtFPClass
{
public:
    static bool isNaN(float x) noexcept { return isNaN(static_cast<double>(x)); }
    static bool isNaN(double x) noexcept { return std::isnan(x); }

    /// Of either sign.
    static bool isInfinity(float x) noexcept { return isInfinity(static_cast<double>(x)); }
    static bool isInfinity(double x) noexcept { return std::isinf(x); }

    static bool isPositiveInfinity(float x) noexcept
    {
        return isPositiveInfinity(static_cast<double>(x));
    }
    static bool isPositiveInfinity(double x) noexcept { return std::isinf(x) && x > 0.; }

    static bool isNegativeInfinity(float x) noexcept
    {
        return isNegativeInfinity(static_cast<double>(x));
    }
    static bool isNegativeInfinity(double x) noexcept { return std::isinf(x) && x < 0.; }

    /// Neither infinite nor NaN.
    static bool isFinite(float x) noexcept { return isFinite(static_cast<double>(x)); }
    static bool isFinite(double x) noexcept { return std::isfinite(x); }
};

} // namespace Kr
