#pragma once

/// @file
/// The calendar: which date and time of day a count of seconds is.

#include <cstdint>

namespace Kr
{

/// A date and time of day, UTC, in the proleptic Gregorian calendar.
struct CalendarTime
{
    std::int64_t year;
    int month; ///< 1 to 12
    int day;   ///< 1 to 31
    int hour;
    int minute;
    int second;
};

/// @param seconds since 1970-01-01 00:00; negative before it
CalendarTime getCalendarTime(std::int64_t seconds) noexcept;

} // namespace Kr
