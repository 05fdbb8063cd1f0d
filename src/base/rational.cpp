#include <base/rational.h>

#include <base/floatUtil.h>
#include <base/rationalEx.h>
#include <base/trace.h>
#include <base/twosComplement.h>

#include <limits>
#include <numeric>
#include <ostream>

namespace Kr
{

void Rational::setValue(std::int32_t numerator, std::int32_t denominator)
{
    if (denominator == 0)
        raise<RationalEx::ExDenominatorZero>(KR_HERE_AT(63));
    _numerator = denominator > 0 ? numerator : TwosComplement::negate(numerator);
    _denominator = denominator > 0 ? denominator : TwosComplement::negate(denominator);
    if (_numerator == 0)
        _denominator = 1;
    else
        lowestTerms();
}

void Rational::lowestTerms() noexcept
{
    constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
    if (_numerator == least || _denominator == least)
        return; // neither has an absolute value in 32 bits: such fractions stay as they are
    // One division first: it is all that whole rates need, and evens out terms of unlike size.
    const std::int32_t remainder = _numerator % _denominator;
    const std::int32_t divisor = remainder == 0 ? _denominator : std::gcd(remainder, _denominator);
    if (divisor == 1)
        return;
    _numerator /= divisor;
    _denominator /= divisor;
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
