#include <base/internal/os/osCalendar.h>

#include <base/internal/errors/calendar.h>

namespace Kr
{

std::int64_t OsCalendar::floorDivide(std::int64_t value, std::int64_t divisor) noexcept
{
    return divideDown(value, divisor);
}

std::int64_t OsCalendar::getNumber(const Day& day) noexcept
{
    return getCalendarDays({day.year, day.month, day.day});
}

OsCalendar::Day OsCalendar::getDay(std::int64_t number) noexcept
{
    const CalendarDate date = getCalendarDate(number);
    return {static_cast<int>(date.year), date.month, date.day};
}

int OsCalendar::getWeekDay(const Day& day) noexcept
{
    const std::int64_t number = getNumber(day) + 4; // 1970 began on a Thursday
    return static_cast<int>(number - 7 * floorDivide(number, 7));
}

int OsCalendar::getYearDay(const Day& day) noexcept
{
    return static_cast<int>(getNumber(day) - getNumber({day.year, 1, 1})) + 1;
}

} // namespace Kr
