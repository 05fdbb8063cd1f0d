#include <base/osDateUtil.h>

#include <base/exSysError.h>
#include <base/raise.h>
#include <platform/platform.h>

namespace Kr
{

namespace
{

constexpr std::int64_t microsecondsFrom1601To1970 = 11644473600 * 1000000;

SYSTEMTIME toSystemTime(const OsDateTypes::DateRep& date)
{
    SYSTEMTIME time = {};
    time.wYear = static_cast<WORD>(date.getYear());
    time.wMonth = static_cast<WORD>(date.getMonth());
    time.wDay = static_cast<WORD>(date.getDay());
    time.wHour = static_cast<WORD>(date.getHour());
    time.wMinute = static_cast<WORD>(date.getMinute());
    return time;
}

/// The minutes from one time of day to another that is less than a day and a half away.
int minutesBetween(const SYSTEMTIME& from, const SYSTEMTIME& to)
{
    const int days = OsDateUtil::getYearDay(to.wYear, to.wMonth, to.wDay) -
                     OsDateUtil::getYearDay(from.wYear, from.wMonth, from.wDay);
    const int years = to.wYear - from.wYear; // 1 or -1 over New Year's Eve
    const int direction = years != 0 ? years : days;
    return direction * 24 * 60 + (to.wHour - from.wHour) * 60 + to.wMinute - from.wMinute;
}

} // namespace

std::int64_t OsDateUtil::performGetCurrentTime() noexcept
{
    FILETIME time = {};
    GetSystemTimeAsFileTime(&time);
    const std::uint64_t steps = (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
    return static_cast<std::int64_t>(steps / 10) - microsecondsFrom1601To1970;
}

int OsDateUtil::performGetOffset(const OsDateTypes::DateRep& date)
{
    const bool isLocal = date.getMode() == OsDateTypes::LocalTime;
    const SYSTEMTIME given = toSystemTime(date);
    SYSTEMTIME other = {};
    const BOOL converted = isLocal ? TzSpecificLocalTimeToSystemTime(nullptr, &given, &other)
                                   : SystemTimeToTzSpecificLocalTime(nullptr, &given, &other);
    if (converted == 0)
        raise<ExSysErrorWindows>(KR_HERE);
    return isLocal ? minutesBetween(other, given) : minutesBetween(given, other);
}

} // namespace Kr
