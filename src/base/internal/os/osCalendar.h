#pragma once

/// @file
/// Internal to the library: the calendar's days and the times within them, for dates.

#include <cstdint>

namespace Kr
{

struct OsCalendar
{
    struct Day
    {
        int year;
        int month;
        int day;
    };

    static constexpr std::int64_t microsecondsPerSecond = 1000000;
    static constexpr std::int64_t microsecondsPerMinute = 60 * microsecondsPerSecond;
    static constexpr std::int64_t microsecondsPerDay = 24 * 60 * microsecondsPerMinute;

    static std::int64_t getNumber(const Day& day) noexcept; ///< days since 1970-01-01
    static Day getDay(std::int64_t number) noexcept;

    static int getWeekDay(const Day& day) noexcept; ///< 0 is Sunday
    static int getYearDay(const Day& day) noexcept; ///< 1 is the first of January

    static std::int64_t floorDivide(std::int64_t value, std::int64_t divisor) noexcept;
};

} // namespace Kr
