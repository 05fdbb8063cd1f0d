#pragma once

/// @file
/// Arithmetic whose every result is rounded to its type, whatever the compiler's settings.
///
/// 32-bit Intel compilers calculate in registers of 80 bits unless they are told otherwise, and
/// keep as many bits as the optimiser happens to leave there; others fuse a product with the sum
/// that takes it where the processor can. What this library compiles into its callers calculates
/// through these operations: one instruction where the compiler rounds every result by itself, a
/// call into the library elsewhere.
/// @code
/// const float sum = Kr::Rounded::add(1.F, 1e-8F); // 1
/// @endcode

#include <base/krBaseApi.h>

#include <cfloat>

namespace Kr
{

/// The operations as the library itself was compiled.
class KR_BASE_API RoundedCalls
{
public:
    static float add(float a, float b) noexcept;
    static double add(double a, double b) noexcept;
    static float subtract(float a, float b) noexcept;
    static double subtract(double a, double b) noexcept;
    static float multiply(float a, float b) noexcept;
    static double multiply(double a, double b) noexcept;
    static float divide(float a, float b) noexcept;
    static double divide(double a, double b) noexcept;
    static float sqrt(float a) noexcept;
    static double sqrt(double a) noexcept;
    static float toFloat(long long a) noexcept;
    static double toDouble(long long a) noexcept;
};

#if FLT_EVAL_METHOD == 0 && !defined(__FP_FAST_FMA) && !defined(__FAST_MATH__)

class Rounded
{
public:
    static float add(float a, float b) noexcept { return a + b; }
    static double add(double a, double b) noexcept { return a + b; }
    static float subtract(float a, float b) noexcept { return a - b; }
    static double subtract(double a, double b) noexcept { return a - b; }
    static float multiply(float a, float b) noexcept { return a * b; }
    static double multiply(double a, double b) noexcept { return a * b; }
    static float divide(float a, float b) noexcept { return a / b; }
    static double divide(double a, double b) noexcept { return a / b; }
    // Without optimisation this is the runtime's function, which on some targets rounds twice.
    static float sqrt(float a) noexcept { return RoundedCalls::sqrt(a); }
    static double sqrt(double a) noexcept { return RoundedCalls::sqrt(a); }
    static float toFloat(long long a) noexcept { return static_cast<float>(a); }
    static double toDouble(long long a) noexcept { return static_cast<double>(a); }
};

#else

using Rounded = RoundedCalls;

#endif

} // namespace Kr
