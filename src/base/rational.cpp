#include <base/rational.h>

#include <base/floatUtil.h>
#include <base/internal/numeric/twosComplement.h>
#include <base/raise.h>
#include <base/rationalEx.h>

#include <limits>
#include <numeric>
#include <ostream>

namespace Kr
{

namespace
{

constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();

/// @param denominator above 0
std::int32_t getCommonDivisor(std::int32_t numerator, std::int32_t denominator) noexcept
{
    if (denominator == 1)
        return 1;
    // One division first: it is all that whole rates need, and evens out terms of unlike size.
    const std::int32_t remainder = numerator % denominator;
    return remainder == 0 ? denominator : std::gcd(remainder, denominator);
}

} // namespace

Rational Rational::normalise(std::int32_t numerator, std::int32_t denominator)
{
    if (denominator == 0)
        raise<RationalEx::ExDenominatorZero>(KR_HERE_AT(63));
    Rational value;
    value._numerator = denominator > 0 ? numerator : TwosComplement::negate(numerator);
    value._denominator = denominator > 0 ? denominator : TwosComplement::negate(denominator);
    if (value._numerator == 0)
        value._denominator = 1;
    else
        value.lowestTerms();
    return value;
}

void Rational::lowestTerms() noexcept
{
    if (_numerator == least || _denominator == least)
        return; // neither has an absolute value in 32 bits: such fractions stay as they are
    const std::int32_t divisor = getCommonDivisor(_numerator, _denominator);
    if (divisor == 1)
        return;
    _numerator /= divisor;
    _denominator /= divisor;
}

bool Rational::canMultiply(const Rational& a, const Rational& b) noexcept
{
    std::int32_t numerator = 0;
    std::int32_t denominator = 0;
    return !__builtin_mul_overflow(a._numerator, b._numerator, &numerator) &&
           !__builtin_mul_overflow(a._denominator, b._denominator, &denominator) &&
           numerator != least && denominator > 0;
}

Rational Rational::multiply(const Rational& a, const Rational& b) noexcept
{
    // Both are in lowest terms, so only a term of one and a term of the other share a divisor.
    const std::int32_t divisor = getCommonDivisor(a._numerator, b._denominator) *
                                 getCommonDivisor(b._numerator, a._denominator);
    Rational product;
    product._numerator = a._numerator * b._numerator;
    product._denominator = a._denominator * b._denominator;
    if (divisor != 1)
    {
        product._numerator /= divisor;
        product._denominator /= divisor;
    }
    return product;
}

void Rational::dump(std::ostream& stream) const
{
    stream << '(' << _numerator << '/' << _denominator << '=' << getDouble() << ')';
}

bool operator<(const Rational& a, const Rational& b) noexcept
{
    return FloatUtil::isSmaller(a.getDouble(), b.getDouble());
}

bool operator<=(const Rational& a, const Rational& b) noexcept
{
    return FloatUtil::isSmallerEqual(a.getDouble(), b.getDouble());
}

bool operator>(const Rational& a, const Rational& b) noexcept
{
    return FloatUtil::isGreater(a.getDouble(), b.getDouble());
}

bool operator>=(const Rational& a, const Rational& b) noexcept
{
    return FloatUtil::isGreaterEqual(a.getDouble(), b.getDouble());
}

std::ostream& operator<<(std::ostream& stream, const Rational& value)
{
    value.dump(stream);
    return stream;
}

} // namespace Kr
