#include <base/internal/errors/calendar.h>

namespace Kr
{

namespace
{

/// Rounded towards the past, so that times before 1970 belong to their own day.
std::int64_t divideDown(std::int64_t count, std::int64_t divisor) noexcept
{
    return (count >= 0 ? count : count - divisor + 1) / divisor;
}

} // namespace

/// Counted in eras of 400 years that begin on 1 March, which puts the leap day at the end of the
/// year (H. Hinnant, "chrono-Compatible Low-Level Date Algorithms", 2014). The runtime's `gmtime`
/// is not safe between threads.
CalendarTime getCalendarTime(std::int64_t seconds) noexcept
{
    constexpr std::int64_t secondsPerDay = 86400;
    constexpr std::int64_t daysPerEra = 146097;
    const std::int64_t daysSince1970 = divideDown(seconds, secondsPerDay);
    const int inDay = static_cast<int>(seconds - daysSince1970 * secondsPerDay);
    const std::int64_t days = daysSince1970 + 719468; // from 0000-03-01
    const std::int64_t era = divideDown(days, daysPerEra);
    const int dayOfEra = static_cast<int>(days - era * daysPerEra);
    const int yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const int dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const int shiftedMonth = (5 * dayOfYear + 2) / 153; // 0 is March
    const int day = dayOfYear - (153 * shiftedMonth + 2) / 5 + 1;
    const int month = shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9;
    const std::int64_t year = era * 400 + yearOfEra + (month <= 2 ? 1 : 0);
    return {year, month, day, inDay / 3600, inDay / 60 % 60, inDay % 60};
}

} // namespace Kr
