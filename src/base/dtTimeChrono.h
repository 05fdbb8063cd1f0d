#pragma once

/// @file
/// Discrete times to and from `std::chrono` durations.
/// @code
/// using namespace std::chrono_literals;
/// const Kr::DtTime time = Kr::DtTimeChrono::getDtTime(40ms); // 40 at 1000/1
/// const Kr::DtTime frame = Kr::DtTimeChrono::getDtTime(40ms, Kr::Rational(25, 1)); // 1 at 25/1
/// const auto delay = Kr::DtTimeChrono::getDuration<std::chrono::microseconds>(frame); // 40 ms
/// @endcode
///
/// Between integers everything is exact but the final truncation toward zero, the same as
/// `std::chrono::duration_cast` makes; no intermediate product overflows. To learn whether anything
/// was cut, or to round otherwise, use the rate of the duration's ticks:
/// @code
/// const Kr::DtTime time(1, 30000, 1001); // 33366666.67 ns
/// const auto [count, isExact] = time.getCount().convertChecked(
///     time.getRate(), Kr::DtTimeChrono::getRate<std::chrono::nanoseconds>());
/// std::cout << count << (isExact ? " ns\n" : " ns and a fraction\n");
/// @endcode
/// A duration that counts in floating point is as exact as its type.
///
/// The period of a duration must have terms of 31 bits: nanoseconds and hours do, picoseconds do
/// not (they do not compile).

#include <base/dtEx.h>
#include <base/dtTime.h>
#include <base/krBaseApi.h>
#include <base/raise.h>

#include <chrono>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace Kr
{

class DtTimeChrono
{
public:
    /// Ticks per second of a duration type.
    template <class Duration>
    static Rational getRate()
    {
        using Period = typename Duration::period;
        constexpr std::intmax_t greatest = std::numeric_limits<std::int32_t>::max();
        static_assert(Period::num <= greatest && Period::den <= greatest,
                      "the period's terms must fit in 31 bits");
        return Rational(static_cast<std::int32_t>(Period::den),
                        static_cast<std::int32_t>(Period::num));
    }

    /// The duration, truncated toward zero unless it counts in floating point.
    /// @throws DtEx::CountOverflow if the duration's type cannot hold it
    template <class Duration>
    static Duration getDuration(const DtTime& time)
    {
        using Rep = typename Duration::rep;
        const Rational rate = getRate<Duration>();
        if constexpr (std::is_floating_point_v<Rep>)
            return Duration(static_cast<Rep>(getTicks(time, rate)));
        else
            return Duration(fit<Rep>(time.getCount().convertChecked(time.getRate(), rate).count));
    }

    /// The duration's own count at the rate of its ticks: exact. For integer counts.
    /// @throws DtEx::CountOverflow if an unsigned count does not fit
    template <class Rep, class Period>
    static DtTime getDtTime(const std::chrono::duration<Rep, Period>& duration)
    {
        static_assert(std::is_integral_v<Rep>, "name a rate for a floating-point duration");
        return DtTime(fit<long long>(duration.count()),
                      getRate<std::remove_cv_t<std::remove_reference_t<decltype(duration)>>>());
    }

    /// The duration at a rate, truncated toward zero.
    /// @throws DtEx::CountOverflow if the count does not fit in 64 bits
    /// @throws DtEx::BadRate if the rate is zero
    template <class Rep, class Period>
    static DtTime getDtTime(const std::chrono::duration<Rep, Period>& duration,
                            const Rational& rate)
    {
        if constexpr (std::is_floating_point_v<Rep>)
        {
            return getDtTime(static_cast<double>(duration.count()),
                             getRate<std::chrono::duration<Rep, Period>>(), rate);
        }
        else
        {
            const DtTime time = getDtTime(duration);
            return DtTime(time.getCount().convertChecked(time.getRate(), rate).count, rate);
        }
    }

private:
    /// The time in ticks of the rate, in floating point.
    KR_BASE_API static double getTicks(const DtTime& time, const Rational& rate) noexcept;
    /// A count of ticks at one rate as a time at another, truncated toward zero.
    KR_BASE_API static DtTime getDtTime(double ticks, const Rational& tickRate,
                                        const Rational& rate);

    template <class To, class From>
    static To fit(From value)
    {
        const To result = static_cast<To>(value);
        if (static_cast<From>(result) != value || (result < To{}) != (value < From{}))
            raise<DtEx::CountOverflow>(KR_HERE);
        return result;
    }
};

} // namespace Kr
