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

int compare(const Unsigned128& a, const Unsigned128& b) noexcept
{
    if (a.high != b.high)
        return a.high < b.high ? -1 : 1;
    return a.low < b.low ? -1 : (a.low > b.low ? 1 : 0);
}

int getSign(std::int64_t value) noexcept
{
    return value < 0 ? -1 : (value > 0 ? 1 : 0);
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
    if (_denominator > 0 && canSplit())
        return scaleSplit(count);
    const WideRatio reduced = getReduced();
    return reduced.canSplit() ? reduced.scaleSplit(count) : reduced.scaleIn128Bits(count);
}

/// Whether a remainder of the denominator times the numerator fits in 64 bits.
bool WideRatio::canSplit() const noexcept
{
    std::int64_t product = 0;
    return !__builtin_mul_overflow(_numerator, _denominator, &product);
}

/// Whole multiples of the denominator first, then what is left: both have the sign of the result,
/// so truncating the second truncates the sum.
WideRatio::Scaled WideRatio::scaleSplit(std::int64_t count) const noexcept
{
    const std::int64_t rest = count % _denominator * _numerator;
    Scaled scaled{0, rest % _denominator == 0, false};
    std::int64_t whole = 0;
    scaled.fits = !__builtin_mul_overflow(count / _denominator, _numerator, &whole) &&
                  !__builtin_add_overflow(whole, rest / _denominator, &scaled.quotient);
    return scaled;
}

WideRatio::Scaled WideRatio::scaleIn128Bits(std::int64_t count) const noexcept
{
    const bool isNegative = (count < 0) != (_numerator < 0);
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

/// In lowest terms with a positive denominator, as a `Rational` is.
WideRatio WideRatio::getReduced() const noexcept
{
    const std::int64_t common = std::gcd(_numerator, _denominator);
    const std::int64_t divisor = _denominator < 0 ? -common : common;
    return WideRatio(_numerator / divisor, _denominator / divisor);
}

std::int64_t WideRatio::scaleWrapping(std::int64_t count) const noexcept
{
    const WideRatio reduced = getReduced();
    return TwosComplement::divide(TwosComplement::multiply(count, reduced._numerator),
                                  reduced._denominator);
}

int WideRatio::compareProducts(std::int64_t a, std::int64_t b, std::int64_t c,
                               std::int64_t d) noexcept
{
    const int left = getSign(a) * getSign(b);
    const int right = getSign(c) * getSign(d);
    if (left != right)
        return left < right ? -1 : 1;
    const int order = compare(multiply(TwosComplement::magnitude(a), TwosComplement::magnitude(b)),
                              multiply(TwosComplement::magnitude(c), TwosComplement::magnitude(d)));
    return left < 0 ? -order : order;
}

} // namespace Kr
