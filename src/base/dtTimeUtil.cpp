#include <base/dtTimeUtil.h>

#include <base/dtEx.h>
#include <base/floatUtil.h>
#include <base/internal/numeric/wideRatio.h>
#include <base/raise.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <limits>
#include <numeric>
#include <string_view>
#include <system_error>

namespace Kr
{

namespace
{

/// Takes the next field off the text: what stands before the next blank, leading blanks skipped.
/// Empty when none is left.
std::string_view takeField(std::string_view& text) noexcept
{
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    const std::string_view field = text.substr(0, text.find(' '));
    text.remove_prefix(field.size());
    return field;
}

/// Reads a decimal integer as the C library does: white space and one sign may precede it, anything
/// may follow it.
template <class Integer>
std::errc readInteger(std::string_view field, Integer& value) noexcept
{
    field.remove_prefix(std::min(field.find_first_not_of(" \t\n\v\f\r"), field.size()));
    if (field.size() > 1 && field[0] == '+' && field[1] != '-')
        field.remove_prefix(1);
    return std::from_chars(field.data(), field.data() + field.size(), value).ec;
}

double getSeconds(double count, const Rational& rate) noexcept
{
    return count * rate.getReciprocalDouble();
}

float getSeconds(float count, const Rational& rate) noexcept
{
    return count * rate.getReciprocalFloat();
}

/// Truncated toward zero, to the nearest 64-bit integer.
DtTimeIndex saturate(double count) noexcept
{
    if (TwosComplement::canTruncate(count))
        return TwosComplement::truncate(count);
    using Limits = std::numeric_limits<std::int64_t>;
    return count > 0. ? Limits::max() : Limits::min();
}

/// The lowest rate at which the ticks of both are whole: the least common multiple of the
/// fractions.
Rational getExactRate(const Rational& a, const Rational& b)
{
    const std::int64_t numerator =
        std::lcm(std::int64_t{a.getNumerator()}, std::int64_t{b.getNumerator()});
    const std::int64_t denominator =
        std::gcd(std::int64_t{a.getDenominator()}, std::int64_t{b.getDenominator()});
    constexpr std::int64_t greatest = std::numeric_limits<std::int32_t>::max();
    if (numerator > greatest || denominator > greatest)
        raise<DtEx::RateOverflow>(KR_HERE, a, b);
    return Rational(static_cast<std::int32_t>(numerator), static_cast<std::int32_t>(denominator));
}

std::int64_t convertExactly(const DtTime& time, const Rational& rate)
{
    return time.getCount().convertChecked(time.getRate(), rate).count;
}

/// What a count at the rate is multiplied by to be compared with one at the other rate.
std::int64_t getFactor(const Rational& rate, const Rational& other) noexcept
{
    return std::int64_t{rate.getDenominator()} * other.getNumerator();
}

template <class Float>
Interval<DtTimeIndex> getTicks(const Interval<Float>& seconds, Float rate)
{
    const Interval<Float> ticks = seconds * rate;
    const DtTimeIndex first = saturate(FloatUtil::ceil(ticks.getLower()));
    const DtTimeIndex last = saturate(ticks.getUpper());
    // An interval would take ends in the wrong order for an oversight, and exchange them.
    const bool isEmpty = !(ticks.getLower() <= ticks.getUpper()) || first > last;
    return isEmpty ? Interval<DtTimeIndex>::getEmpty() : Interval<DtTimeIndex>(first, last);
}

} // namespace

double DtTimeUtil::getSecondsDouble(const DtTime& time) noexcept
{
    return getSeconds(time.getCount().getDouble(), time.getRate());
}

float DtTimeUtil::getSecondsFloat(const DtTime& time) noexcept
{
    return getSeconds(time.getCount().getFloat(), time.getRate());
}

DtTime DtTimeUtil::getDtTimeFromSeconds(const Rational& rate, double seconds,
                                        std::float_round_style style)
{
    const double count = DtTimeIndex::roundInStyle(seconds * rate.getDouble(), style);
    return DtTime(TwosComplement::truncate(count), rate);
}

DtTime DtTimeUtil::getDtTimeFromSeconds(const Rational& rate, float seconds,
                                        std::float_round_style style)
{
    const float count = seconds * rate.getFloat();
    return DtTime(TwosComplement::truncate(DtTimeIndex::roundInStyle(count, style)), rate);
}

DtTime DtTimeUtil::getExactSum(const DtTime& a, const DtTime& b)
{
    const Rational rate = getExactRate(a.getRate(), b.getRate());
    const std::int64_t left = convertExactly(a, rate), right = convertExactly(b, rate);
    std::int64_t sum = 0;
    if (__builtin_add_overflow(left, right, &sum))
        raise<DtEx::CountOverflow>(KR_HERE);
    return DtTime(sum, rate);
}

DtTime DtTimeUtil::getExactDifference(const DtTime& a, const DtTime& b)
{
    const Rational rate = getExactRate(a.getRate(), b.getRate());
    const std::int64_t left = convertExactly(a, rate), right = convertExactly(b, rate);
    std::int64_t difference = 0;
    if (__builtin_sub_overflow(left, right, &difference))
        raise<DtEx::CountOverflow>(KR_HERE);
    return DtTime(difference, rate);
}

int DtTimeUtil::compareExactly(const DtTime& a, const DtTime& b) noexcept
{
    const std::int64_t left = getFactor(a.getRate(), b.getRate());
    const std::int64_t right = getFactor(b.getRate(), a.getRate());
    // Multiplying by both numerators has turned the order round where just one is negative.
    const bool isTurned = (a.getRate().getNumerator() < 0) != (b.getRate().getNumerator() < 0);
    const int order = WideRatio::compareProducts(a.getCount(), left, b.getCount(), right);
    return isTurned ? -order : order;
}

Interval<DtTimeIndex> DtTimeUtil::getInclusiveDtTimeIndexInterval(const DtTime& time,
                                                                  const Interval<double>& seconds)
{
    return getTicks(seconds, time.getRate().getDouble());
}

Interval<DtTimeIndex> DtTimeUtil::getInclusiveDtTimeIndexInterval(const DtTime& time,
                                                                  const Interval<float>& seconds)
{
    return getTicks(seconds, time.getRate().getFloat());
}

Interval<double> DtTimeUtil::getSecondsIntervalDouble(const DtTime& time,
                                                      const Interval<DtTimeIndex>& indices)
{
    if (indices.isEmpty())
        return Interval<double>::getEmpty();
    return Interval<double>(getSeconds(indices.getLower().getDouble(), time.getRate()),
                            getSeconds(indices.getUpper().getDouble(), time.getRate()));
}

Interval<float> DtTimeUtil::getSecondsIntervalFloat(const DtTime& time,
                                                    const Interval<DtTimeIndex>& indices)
{
    if (indices.isEmpty())
        return Interval<float>::getEmpty();
    return Interval<float>(getSeconds(indices.getLower().getFloat(), time.getRate()),
                           getSeconds(indices.getUpper().getFloat(), time.getRate()));
}

ArrayPtrRet<char> DtTimeUtil::getDtStringFromDtTime(const DtTime& time)
{
    char local[64]; // three integers take 20 + 11 + 11 characters at most
    const int length =
        std::snprintf(local, sizeof(local), "%lld %d %d", static_cast<long long>(time.getCount()),
                      static_cast<int>(time.getRate().getNumerator()),
                      static_cast<int>(time.getRate().getDenominator()));
    char* const text = new char[static_cast<std::size_t>(length) + 1];
    std::memcpy(text, local, static_cast<std::size_t>(length) + 1);
    return ArrayPtrRet<char>(text);
}

DtTime DtTimeUtil::getDtTimeFromDtString(const char* text)
{
    KR_ASSERT(text != nullptr);
    using Error = DtEx::DtStringError;
    std::string_view rest(text);

    std::int64_t count = 0;
    readInteger(takeField(rest), count); // stays 0 when it is not an integer

    std::int32_t numerator = 0;
    const std::errc numeratorError = readInteger(takeField(rest), numerator);
    if (numeratorError == std::errc::result_out_of_range)
        raise<Error>(KR_HERE_AT(106), Error::NumeratorOverflow);
    if (numeratorError != std::errc())
        raise<Error>(KR_HERE_AT(111), Error::NumeratorMalformed);

    std::int32_t denominator = 0;
    const std::errc denominatorError = readInteger(takeField(rest), denominator);
    if (denominatorError == std::errc::result_out_of_range)
        raise<Error>(KR_HERE_AT(121), Error::DenominatorOverflow);
    if (denominatorError != std::errc())
        raise<Error>(KR_HERE_AT(126), Error::DenominatorMalformed);

    return DtTime(DtTimeIndex(count), numerator, denominator);
}

} // namespace Kr
