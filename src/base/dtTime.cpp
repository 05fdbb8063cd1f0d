#include <base/dtTime.h>

#include <base/dtEx.h>
#include <base/internal/numeric/twosComplement.h>
#include <base/internal/numeric/wideRatio.h>
#include <base/raise.h>

#include <ostream>

namespace Kr
{

namespace
{

/// The most ticks per second, and seconds per tick, of a common rate.
constexpr std::int32_t greatestCommonTerm = 1000000;

bool isWithinLimits(const Rational& rate) noexcept
{
    return TwosComplement::magnitude(rate.getNumerator()) <= greatestCommonTerm &&
           rate.getDenominator() <= greatestCommonTerm;
}

/// The product of both rates in 32-bit arithmetic, clamped.
Rational getClampedRate(const Rational& a, const Rational& b)
{
    const Rational product(TwosComplement::multiply(a.getNumerator(), b.getNumerator()),
                           TwosComplement::multiply(a.getDenominator(), b.getDenominator()));
    const std::int32_t sign = product.getNumerator() > 0 ? 1 : -1;
    if (TwosComplement::magnitude(product.getNumerator()) > greatestCommonTerm)
        return Rational(sign * greatestCommonTerm, 1);
    if (product.getDenominator() > greatestCommonTerm)
        return Rational(sign, greatestCommonTerm);
    return product;
}

/// `DtTimeIndex::convert` from a rate to its product with another, whose factor is the other rate.
DtTimeIndex scale(const DtTimeIndex& count, const Rational& rate)
{
    return WideRatio(rate.getNumerator(), rate.getDenominator()).scale(count);
}

} // namespace

DtTime::DtTime(const DtTimeIndex& count, const Rational& rate)
    : _count(count)
    , _rate(rate)
{
    if (_rate.getNumerator() == 0)
        raise<DtEx::BadRate>(KR_HERE_AT(95));
}

DtTime::DtTime(const DtTimeIndex& count, std::int32_t numerator, std::int32_t denominator)
    : _count(count)
    , _rate(numerator, denominator)
{
    if (_rate.getNumerator() == 0)
        raise<DtEx::BadRate>(KR_HERE_AT(110));
}

DtTime DtTime::convertRate(const Rational& rate) const
{
    if (rate == _rate)
        return *this;
    return DtTime(_count.convert(_rate, rate, std::round_toward_zero), rate);
}

template <class Operation>
DtTime& DtTime::combine(const DtTime& other, Operation operation)
{
    if (isRateEqual(other))
    {
        operation(_count, other._count);
        return *this;
    }
    // The ticks of either rate are whole at the product: 24/1 and 25/1 meet at 600/1.
    const bool fits = Rational::canMultiply(_rate, other._rate);
    Rational rate = fits ? Rational::multiply(_rate, other._rate) : Rational();
    DtTimeIndex count, otherCount;
    if (fits && isWithinLimits(rate))
    {
        count = scale(_count, other._rate);
        otherCount = scale(other._count, _rate);
    }
    else
    {
        rate = getClampedRate(_rate, other._rate);
        count = convertRate(rate)._count;
        otherCount = other.convertRate(rate)._count;
    }
    operation(count, otherCount);
    _count = count;
    _rate = rate;
    return *this;
}

DtTime& DtTime::operator+=(const DtTime& other)
{
    return combine(other, [](DtTimeIndex& a, DtTimeIndex b) { a += b; });
}

DtTime& DtTime::operator-=(const DtTime& other)
{
    return combine(other, [](DtTimeIndex& a, DtTimeIndex b) { a -= b; });
}

DtTime& DtTime::operator*=(const DtTime& other)
{
    return combine(other, [](DtTimeIndex& a, DtTimeIndex b) { a *= b; });
}

DtTime& DtTime::operator/=(const DtTime& divisor)
{
    return combine(divisor, [](DtTimeIndex& a, DtTimeIndex b) { a /= b; });
}

DtTime& DtTime::operator%=(const DtTime& divisor)
{
    return combine(divisor, [](DtTimeIndex& a, DtTimeIndex b) { a %= b; });
}

void DtTime::dump(std::ostream& stream) const
{
    stream << '(' << _count << " @ ";
    _rate.dump(stream);
    stream << ')';
}

std::ostream& operator<<(std::ostream& stream, const DtTime& time)
{
    time.dump(stream);
    return stream;
}

} // namespace Kr
