#include <base/dtTimeChrono.h>

#include <base/internal/numeric/twosComplement.h>

namespace Kr
{

// Compiled here, where every step is rounded to double.

double DtTimeChrono::getTicks(const DtTime& time, const Rational& rate) noexcept
{
    return time.getCount().getDouble() * time.getRate().getDenominator() /
           time.getRate().getNumerator() * rate.getNumerator() / rate.getDenominator();
}

DtTime DtTimeChrono::getDtTime(double ticks, const Rational& tickRate, const Rational& rate)
{
    const double seconds = ticks * tickRate.getDenominator() / tickRate.getNumerator();
    const double count = seconds * rate.getDouble();
    if (!TwosComplement::canTruncate(count))
        raise<DtEx::CountOverflow>(KR_HERE);
    return DtTime(TwosComplement::truncate(count), rate);
}

} // namespace Kr
