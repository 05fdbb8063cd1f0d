#include <base/osDateTypes.h>

#include <base/osDateUtil.h>

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
    return OsDateUtil::getWeekDay(_year, _month, _day);
}

int DateRep::getYearDay() const noexcept
{
    return OsDateUtil::getYearDay(_year, _month, _day);
}

bool operator==(const DateRep& lhs, const DateRep& rhs)
{
    return OsDateUtil::compare(lhs, rhs) == 0;
}

bool operator!=(const DateRep& lhs, const DateRep& rhs)
{
    return OsDateUtil::compare(lhs, rhs) != 0;
}

bool operator<(const DateRep& lhs, const DateRep& rhs)
{
    return OsDateUtil::compare(lhs, rhs) < 0;
}

bool operator<=(const DateRep& lhs, const DateRep& rhs)
{
    return OsDateUtil::compare(lhs, rhs) <= 0;
}

bool operator>(const DateRep& lhs, const DateRep& rhs)
{
    return OsDateUtil::compare(lhs, rhs) > 0;
}

bool operator>=(const DateRep& lhs, const DateRep& rhs)
{
    return OsDateUtil::compare(lhs, rhs) >= 0;
}

std::ostream& operator<<(std::ostream& stream, const DateRep& date)
{
    return stream << OsDateUtil::format(date, "%Y-%m-%dT%H:%M:%S%z");
}

} // namespace Kr
