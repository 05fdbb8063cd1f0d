#include <base/dtTimeIndex.h>

#include <base/dtEx.h>
#include <base/floatUtil.h>
#include <base/internal/numeric/wideRatio.h>
#include <base/raise.h>
#include <base/rationalEx.h>
#include <base/streamInserters.h>

#include <ostream>

namespace Kr
{

namespace
{

constexpr long long secondsPerHour = 3600;
constexpr long long secondsPerMinute = 60;

/// The factor from a count at one rate to a count at the other. Its terms are products of 32-bit
/// numbers taken in 64 bits, so none overflows.
/// @throws RationalEx::ExDenominatorZero if `fromRate` is zero
WideRatio getFactor(const Rational& fromRate, const Rational& toRate)
{
    if (fromRate.getNumerator() == 0) // as the fraction of these terms would be refused
        raise<RationalEx::ExDenominatorZero>("src/base/rational", 63);
    const std::int64_t numerator = fromRate.getDenominator();
    const std::int64_t denominator = fromRate.getNumerator();
    return WideRatio(numerator * toRate.getNumerator(), denominator * toRate.getDenominator());
}

} // namespace

long long DtTimeIndex::getWholeSeconds(const Rational& rate) const
{
    KR_ASSERT(rate.getNumerator() != 0);
    const long long product = TwosComplement::multiply<long long>(_count, rate.getDenominator());
    return TwosComplement::divide<long long>(product, rate.getNumerator());
}

long long DtTimeIndex::getHours(const Rational& rate) const
{
    return getWholeSeconds(rate) / secondsPerHour;
}

long long DtTimeIndex::getMinutes(const Rational& rate) const
{
    return getWholeSeconds(rate) % secondsPerHour / secondsPerMinute;
}

double DtTimeIndex::getSeconds(const Rational& rate) const
{
    const long long whole = getWholeSeconds(rate);
    const double exact = getDouble() * rate.getDenominator() / rate.getNumerator();
    return static_cast<double>(whole % secondsPerMinute) + (exact - static_cast<double>(whole));
}

DtTimeIndex DtTimeIndex::convert(const Rational& fromRate, const Rational& toRate,
                                 std::float_round_style style) const
{
    if (style == std::round_toward_zero)
        return getFactor(fromRate, toRate).scale(_count);
    return TwosComplement::truncate(convertDouble(fromRate, toRate, style));
}

DtTimeIndex::Conversion DtTimeIndex::convertChecked(const Rational& fromRate,
                                                    const Rational& toRate,
                                                    std::float_round_style style) const
{
    const WideRatio::Scaled scaled = getFactor(fromRate, toRate).scaleExactly(_count);
    const bool isTowardZero = style == std::round_toward_zero;
    const double rounded = isTowardZero ? 0. : convertDouble(fromRate, toRate, style);
    if (!scaled.fits || !TwosComplement::canTruncate(rounded))
        raise<DtEx::CountOverflow>(KR_HERE);
    const long long count = isTowardZero ? scaled.quotient : TwosComplement::truncate(rounded);
    return {count, scaled.isExact && count == scaled.quotient};
}

double DtTimeIndex::convertDouble(const Rational& fromRate, const Rational& toRate,
                                  std::float_round_style style) const
{
    return roundInStyle(getDouble() * fromRate.getDenominator() / fromRate.getNumerator() *
                            toRate.getNumerator() / toRate.getDenominator(),
                        style);
}

/// To be truncated afterwards.
double DtTimeIndex::roundInStyle(double count, std::float_round_style style) noexcept
{
    switch (style)
    {
    case std::round_toward_zero:
        return count;
    case std::round_to_nearest:
        return FloatUtil::round(count);
    case std::round_toward_infinity:
        return FloatUtil::ceil(count);
    case std::round_toward_neg_infinity:
        return FloatUtil::floor(count);
    case std::round_indeterminate: // away from zero, the one direction that has no style
        return count < 0. ? FloatUtil::floor(count) : FloatUtil::ceil(count);
    default:
        return 0.;
    }
}

std::ostream& operator<<(std::ostream& stream, const DtTimeIndex& index)
{
    return insertDecimal(stream, static_cast<long long>(index));
}

} // namespace Kr
