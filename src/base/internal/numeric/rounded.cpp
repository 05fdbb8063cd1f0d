#include <base/internal/numeric/rounded.h>

#include <cmath>

namespace Kr
{

static_assert(FLT_EVAL_METHOD == 0, "the library itself is built to round every result");

float RoundedCalls::add(float a, float b) noexcept
{
    return a + b;
}

double RoundedCalls::add(double a, double b) noexcept
{
    return a + b;
}

float RoundedCalls::subtract(float a, float b) noexcept
{
    return a - b;
}

double RoundedCalls::subtract(double a, double b) noexcept
{
    return a - b;
}

float RoundedCalls::multiply(float a, float b) noexcept
{
    return a * b;
}

double RoundedCalls::multiply(double a, double b) noexcept
{
    return a * b;
}

float RoundedCalls::divide(float a, float b) noexcept
{
    return a / b;
}

double RoundedCalls::divide(double a, double b) noexcept
{
    return a / b;
}

float RoundedCalls::sqrt(float a) noexcept
{
    return std::sqrt(a);
}

double RoundedCalls::sqrt(double a) noexcept
{
    return std::sqrt(a);
}

float RoundedCalls::toFloat(long long a) noexcept
{
    return static_cast<float>(a);
}

double RoundedCalls::toDouble(long long a) noexcept
{
    return static_cast<double>(a);
}

} // namespace Kr
