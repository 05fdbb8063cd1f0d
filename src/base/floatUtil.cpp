#include <base/floatUtil.h>

namespace Kr
{

// These are compiled here, not in the caller: sums of products give the same bits everywhere only
// if nothing fuses them, which this library's own build sees to.

float FloatUtil::hypot(float x, float y) noexcept
{
    return std::sqrt(x * x + y * y);
}

double FloatUtil::hypot(double x, double y) noexcept
{
    return std::sqrt(x * x + y * y);
}

float FloatUtil::smoothStep(float edge0, float edge1, float x, float from, float to) noexcept
{
    if (x < edge0)
        return from;
    if (x < edge1)
    {
        const float t = (x - edge0) / (edge1 - edge0);
        return (-2.F * t + 3.F) * t * t * (to - from) + from;
    }
    return to;
}

// The runtime library's functions. On 32-bit Intel processors they return a result of 80 bits,
// which a register would carry on to the caller.

namespace
{

template <class T>
T store(T result) noexcept
{
    const volatile T stored = result;
    return stored;
}

} // namespace

float FloatUtil::pow(float x, float y) noexcept
{
    return store(std::pow(x, y));
}

double FloatUtil::pow(double x, double y) noexcept
{
    return store(std::pow(x, y));
}

float FloatUtil::sin(float x) noexcept
{
    return store(std::sin(x));
}

double FloatUtil::sin(double x) noexcept
{
    return store(std::sin(x));
}

float FloatUtil::cos(float x) noexcept
{
    return store(std::cos(x));
}

double FloatUtil::cos(double x) noexcept
{
    return store(std::cos(x));
}

float FloatUtil::tan(float x) noexcept
{
    return store(std::tan(x));
}

double FloatUtil::tan(double x) noexcept
{
    return store(std::tan(x));
}

float FloatUtil::asin(float x) noexcept
{
    return store(std::asin(x));
}

double FloatUtil::asin(double x) noexcept
{
    return store(std::asin(x));
}

float FloatUtil::acos(float x) noexcept
{
    return store(std::acos(x));
}

double FloatUtil::acos(double x) noexcept
{
    return store(std::acos(x));
}

float FloatUtil::atan(float x) noexcept
{
    return store(std::atan(x));
}

double FloatUtil::atan(double x) noexcept
{
    return store(std::atan(x));
}

float FloatUtil::atan2(float y, float x) noexcept
{
    return store(std::atan2(y, x));
}

double FloatUtil::atan2(double y, double x) noexcept
{
    return store(std::atan2(y, x));
}

float FloatUtil::exp(float x) noexcept
{
    return store(std::exp(x));
}

double FloatUtil::exp(double x) noexcept
{
    return store(std::exp(x));
}

float FloatUtil::log(float x) noexcept
{
    return store(std::log(x));
}

double FloatUtil::log(double x) noexcept
{
    return store(std::log(x));
}

float FloatUtil::log10(float x) noexcept
{
    return store(std::log10(x));
}

double FloatUtil::log10(double x) noexcept
{
    return store(std::log10(x));
}

} // namespace Kr
