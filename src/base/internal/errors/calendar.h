#pragma once

/// @file
/// The calendar: dates as counts of days and back, in the proleptic Gregorian calendar, also before
/// 1970. The runtime's `gmtime` is not safe between threads.

#include <cstdint>

namespace Kr
{

struct CalendarDate
{
    std::int64_t year;
    int month; ///< 1 to 12
    int day;   ///< 1 to 31
};

struct CalendarTime
{
    std::int64_t year;
    int month;
    int day;
    int hour;
    int minute;
    int second;
};

/// The quotient rounded down, so that times before 1970 belong to their own day.
std::int64_t divideDown(std::int64_t count, std::int64_t divisor) noexcept;

/// Days since 1970-01-01; negative before it.
std::int64_t getCalendarDays(const CalendarDate& date) noexcept;

/// @param days since 1970-01-01
CalendarDate getCalendarDate(std::int64_t days) noexcept;

/// @param seconds since 1970-01-01 00:00
CalendarTime getCalendarTime(std::int64_t seconds) noexcept;

} // namespace Kr
