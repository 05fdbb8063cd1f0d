#include <base/osDateTypes.h>

#include <base/internal/os/osCalendar.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ostream>

namespace Kr
{

using DateRep = OsDateTypes::DateRep;

DateRep::DateRep() noexcept = default;

int DateRep::getYear() const noexcept
{
    return _year;
}

int DateRep::getMonth() const noexcept
{
    return _month;
}

int DateRep::getDay() const noexcept
{
    return _day;
}

int DateRep::getHour() const noexcept
{
    return _hour;
}

int DateRep::getMinute() const noexcept
{
    return _minute;
}

double DateRep::getSeconds() const noexcept
{
    return _seconds;
}

OsDateTypes::TimeMode DateRep::getMode() const noexcept
{
    return _mode;
}

int DateRep::getUtcOffset() const noexcept
{
    return _utcOffset;
}

int DateRep::getWeekDay() const noexcept
{
    return OsCalendar::getWeekDay({_year, _month, _day});
}

int DateRep::getYearDay() const noexcept
{
    return OsCalendar::getYearDay({_year, _month, _day});
}

std::int64_t DateRep::getMicroseconds() const noexcept
{
    const std::int64_t minutes = _hour * 60 + _minute - _utcOffset;
    return OsCalendar::getNumber({_year, _month, _day}) * OsCalendar::microsecondsPerDay +
           minutes * OsCalendar::microsecondsPerMinute +
           static_cast<std::int64_t>(std::floor(_seconds * 1e6 + 0.5));
}

int DateRep::compare(const DateRep& other) const noexcept
{
    const std::int64_t left = getMicroseconds();
    const std::int64_t right = other.getMicroseconds();
    return left < right ? -1 : left > right ? 1 : 0;
}

std::ostream& operator<<(std::ostream& stream, const DateRep& date)
{
    const int ahead = std::abs(date.getUtcOffset());
    char text[64];
    char zone[16] = "Z";
    if (date.getMode() == OsDateTypes::LocalTime)
        std::snprintf(zone, sizeof zone, "%c%02d:%02d", date.getUtcOffset() < 0 ? '-' : '+',
                      ahead / 60, ahead % 60);
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d%s", date.getYear(),
                  date.getMonth(), date.getDay(), date.getHour(), date.getMinute(),
                  static_cast<int>(date.getSeconds()), zone);
    return stream << text;
}

} // namespace Kr
