#include <base/dtTime.h>

#include <base/dtEx.h>
#include <base/trace.h>
#include <base/twosComplement.h>

#include <ostream>

namespace Kr
{

namespace
{

/// The most ticks per second, and seconds per tick, of a common rate.
constexpr std::int32_t greatestCommonTerm = 1000000;

/// The product of both rates, whose ticks divide those of either: 24/1 and 25/1 meet at 600/1.
Rational getCommonRate(const Rational& a, const Rational& b)
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

DtTime& DtTime::operator+=(const DtTime& other)
{
    return combine(other, &DtTimeIndex::operator+=);
}

DtTime& DtTime::operator-=(const DtTime& other)
{
    return combine(other, &DtTimeIndex::operator-=);
}

DtTime& DtTime::operator*=(const DtTime& other)
{
    return combine(other, &DtTimeIndex::operator*=);
}

DtTime& DtTime::operator/=(const DtTime& divisor)
{
    return combine(divisor, &DtTimeIndex::operator/=);
}

DtTime& DtTime::operator%=(const DtTime& divisor)
{
    return combine(divisor, &DtTimeIndex::operator%=);
}

DtTime& DtTime::combine(const DtTime& other, Operation operation)
{
    if (isRateEqual(other))
    {
        (_count.*operation)(other._count);
        return *this;
    }
    const Rational rate = getCommonRate(_rate, other._rate);
    DtTime result = convertRate(rate);
    (result._count.*operation)(other.convertRate(rate)._count);
    return *this = result;
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
