#include <base/internal/errors/calendar.h>

namespace Kr
{

// Days are counted in eras of 400 years that begin on 1 March, which puts the leap day at the end
// of the year (H. Hinnant, "chrono-Compatible Low-Level Date Algorithms", 2014).

namespace
{

constexpr std::int64_t daysPerEra = 146097;
constexpr std::int64_t daysFromFirstEraTo1970 = 719468;

} // namespace

std::int64_t divideDown(std::int64_t count, std::int64_t divisor) noexcept
{
    return count / divisor - (count % divisor < 0 ? 1 : 0);
}

std::int64_t getCalendarDays(const CalendarDate& date) noexcept
{
    const std::int64_t year = date.month <= 2 ? date.year - 1 : date.year;
    const std::int64_t era = divideDown(year, 400);
    const std::int64_t yearOfEra = year - era * 400;
    const std::int64_t dayOfYear = (153 * ((date.month + 9) % 12) + 2) / 5 + date.day - 1;
    const std::int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * daysPerEra + dayOfEra - daysFromFirstEraTo1970;
}

CalendarDate getCalendarDate(std::int64_t days) noexcept
{
    const std::int64_t sinceFirstEra = days + daysFromFirstEraTo1970;
    const std::int64_t era = divideDown(sinceFirstEra, daysPerEra);
    const int dayOfEra = static_cast<int>(sinceFirstEra - era * daysPerEra);
    const int yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const int dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const int shiftedMonth = (5 * dayOfYear + 2) / 153; // 0 is March
    const int day = dayOfYear - (153 * shiftedMonth + 2) / 5 + 1;
    const int month = shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9;
    return {era * 400 + yearOfEra + (month <= 2 ? 1 : 0), month, day};
}

CalendarTime getCalendarTime(std::int64_t seconds) noexcept
{
    constexpr std::int64_t secondsPerDay = 86400;
    const std::int64_t days = divideDown(seconds, secondsPerDay);
    const int inDay = static_cast<int>(seconds - days * secondsPerDay);
    const CalendarDate date = getCalendarDate(days);
    return {date.year, date.month, date.day, inDay / 3600, inDay / 60 % 60, inDay % 60};
}

} // namespace Kr
