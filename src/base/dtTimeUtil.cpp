#include <base/dtTimeUtil.h>

#include <base/dtEx.h>
#include <base/floatUtil.h>
#include <base/raise.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <limits>
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

DtTime DtTimeUtil::getDtTimeFromSeconds(const Rational& rate, double seconds)
{
    return DtTime(TwosComplement::truncate(seconds * rate.getDouble()), rate);
}

DtTime DtTimeUtil::getDtTimeFromSeconds(const Rational& rate, float seconds)
{
    return DtTime(TwosComplement::truncate(seconds * rate.getFloat()), rate);
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
