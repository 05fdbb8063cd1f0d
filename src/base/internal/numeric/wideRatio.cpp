#include <base/internal/numeric/wideRatio.h>

#include <limits>
#include <numeric>

namespace Kr
{

namespace
{

constexpr std::uint64_t lowMask = 0xFFFFFFFF;

struct Unsigned128
{
    std::uint64_t high;
    std::uint64_t low;
};

/// Schoolbook multiplication in halves of 32 bits.
Unsigned128 multiply(std::uint64_t a, std::uint64_t b) noexcept
{
    const std::uint64_t lowLow = (a & lowMask) * (b & lowMask);
    const std::uint64_t highLow = (a >> 32) * (b & lowMask);
    const std::uint64_t lowHigh = (a & lowMask) * (b >> 32);
    const std::uint64_t highHigh = (a >> 32) * (b >> 32);
    const std::uint64_t middle = (lowLow >> 32) + (highLow & lowMask) + lowHigh;
    return {highHigh + (highLow >> 32) + (middle >> 32), (middle << 32) | (lowLow & lowMask)};
}

struct Division
{
    std::uint64_t quotient;
    std::uint64_t remainder;
};

/// One bit of the quotient at a time. `divisor` is above `dividend.high`, so that the quotient
/// fits, and at most 2^63, so that the doubled remainder does.
Division divide(const Unsigned128& dividend, std::uint64_t divisor) noexcept
{
    Division result{0, dividend.high};
    for (int bit = 63; bit >= 0; --bit)
    {
        result.remainder = (result.remainder << 1) | ((dividend.low >> bit) & 1);
        result.quotient <<= 1;
        if (result.remainder >= divisor)
        {
            result.remainder -= divisor;
            result.quotient |= 1;
        }
    }
    return result;
}

} // namespace

std::int64_t WideRatio::scaleWide(std::int64_t count) const noexcept
{
    const Scaled scaled = scaleExactly(count);
    return scaled.fits ? scaled.quotient : scaleWrapping(count);
}

WideRatio::Scaled WideRatio::scaleExactly(std::int64_t count) const noexcept
{
    const bool isNegative = (count < 0) != ((_numerator < 0) != (_denominator < 0));
    const std::uint64_t divisor = TwosComplement::magnitude(_denominator);
    const Unsigned128 product =
        multiply(TwosComplement::magnitude(count), TwosComplement::magnitude(_numerator));
    if (product.high >= divisor)
        return {0, false, false};
    const Division division = product.high == 0
                                  ? Division{product.low / divisor, product.low % divisor}
                                  : divide(product, divisor);
    const std::uint64_t limit =
        static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    const std::int64_t quotient = static_cast<std::int64_t>(
        isNegative ? std::uint64_t{0} - division.quotient : division.quotient);
    return {quotient, division.remainder == 0, division.quotient <= limit + (isNegative ? 1 : 0)};
}

std::int64_t WideRatio::scaleWrapping(std::int64_t count) const noexcept
{
    const std::int64_t common = std::gcd(_numerator, _denominator);
    const std::int64_t divisor = _denominator < 0 ? -common : common; // as a Rational is reduced
    return TwosComplement::divide(TwosComplement::multiply(count, _numerator / divisor),
                                  _denominator / divisor);
}

} // namespace Kr
