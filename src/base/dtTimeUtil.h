#pragma once

/// @file
/// Discrete times as seconds, as tick intervals and as text.
/// @code
/// const Kr::DtTime time = Kr::DtTimeUtil::getDtTimeFromDtString("48 24 1");
/// const double seconds = Kr::DtTimeUtil::getSecondsDouble(time); // 2
/// const Kr::ArrayPtr<char> text(Kr::DtTimeUtil::getDtStringFromDtTime(time));
/// @endcode
///
/// Pitfall: seconds in floating point are rounded, so a time that makes the way to seconds and back
/// can lose a tick to the truncation. Give `std::round_to_nearest` on the way back:
/// @code
/// const Kr::DtTime frame(7, 24, 1); // would come back as 6
/// const Kr::DtTime same = Kr::DtTimeUtil::getDtTimeFromSeconds(
///     frame.getRate(), Kr::DtTimeUtil::getSecondsDouble(frame), std::round_to_nearest);
/// @endcode
/// The text form is exact.
///
/// All functions can be called by several threads at a time.

#include <base/arrayPtr.h>
#include <base/dtTime.h>
#include <base/dtTimeIndexInterval.h>
#include <base/krBaseApi.h>

namespace Kr
{

class KR_BASE_API DtTimeUtil
{
public:
    /// @name Times as seconds
    /// @{

    /// The count times the reciprocal of the rate.
    static double getSecondsDouble(const DtTime& time) noexcept;
    static float getSecondsFloat(const DtTime& time) noexcept;

    /// seconds * rate, rounded in one of the styles of `DtTimeIndex::convert`; truncated toward
    /// zero unless another is given. What does not fit in 64 bits gives the least count.
    ///
    /// `std::round_to_nearest` brings back the count that `getSecondsDouble` was made from, up to
    /// 2^50; truncation loses a tick of 162 of the first 1000 at 24/1.
    /// @throws DtEx::BadRate if the rate is zero
    static DtTime getDtTimeFromSeconds(const Rational& rate, double seconds,
                                       std::float_round_style style = std::round_toward_zero);
    static DtTime getDtTimeFromSeconds(const Rational& rate, float seconds,
                                       std::float_round_style style = std::round_toward_zero);
    /// @}

    /// @name Exact arithmetic across rates
    /// The operators of `DtTime` combine at the product of the rates, clamped, in numbers that wrap
    /// around; these are exact or raise. The result is at the lowest rate at which the ticks of
    /// both are whole, which is positive.
    /// @throws DtEx::RateOverflow if that rate does not fit in 32 bits
    /// @throws DtEx::CountOverflow if a count does not fit in 64 bits at that rate
    /// @{
    static DtTime getExactSum(const DtTime& a, const DtTime& b);
    static DtTime getExactDifference(const DtTime& a, const DtTime& b);
    /// @}

    /// -1 if a's seconds are below b's, 0 if they are equal, 1 if they are above. For any counts
    /// and rates: nothing wraps around, and negative rates are ordered by what they mean.
    static int compareExactly(const DtTime& a, const DtTime& b) noexcept;

    /// @name Intervals
    /// @{

    /// The ticks at `time`'s rate that lie in an interval of seconds: [0.51, 0.99] at 24/1 holds
    /// the ticks [13, 23]. Empty when there is none; ends that do not fit in 64 bits saturate.
    /// The upper end is truncated toward zero, so below zero it is rounded up: that is kept.
    static Interval<DtTimeIndex> getInclusiveDtTimeIndexInterval(const DtTime& time,
                                                                 const Interval<double>& seconds);
    static Interval<DtTimeIndex> getInclusiveDtTimeIndexInterval(const DtTime& time,
                                                                 const Interval<float>& seconds);

    /// The seconds of an interval of ticks at `time`'s rate.
    static Interval<double> getSecondsIntervalDouble(const DtTime& time,
                                                     const Interval<DtTimeIndex>& indices);
    static Interval<float> getSecondsIntervalFloat(const DtTime& time,
                                                   const Interval<DtTimeIndex>& indices);
    /// @}

    /// @name Text form: count, rate numerator and rate denominator, "-3 30000 1001"
    /// @{

    /// The caller owns the text.
    static ArrayPtrRet<char> getDtStringFromDtTime(const DtTime& time);

    /// Reads the text form back. Lenient on purpose: fields are separated by any number of blanks,
    /// what follows a number in its field ("24x") and what follows the third field are ignored, and
    /// a count that is not a 64-bit integer reads as 0.
    ///
    /// @param text not null (a failed assertion)
    /// @throws DtEx::DtStringError if a term of the rate is missing, is not a number or does not
    ///         fit in 32 bits
    /// @throws RationalEx::ExDenominatorZero if the denominator is 0
    /// @throws DtEx::BadRate if the numerator is 0
    static DtTime getDtTimeFromDtString(const char* text);
    /// @}
};

} // namespace Kr
