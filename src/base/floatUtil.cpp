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

} // namespace Kr
