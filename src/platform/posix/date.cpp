#include <platform/platform.h>
#include <platform/posix/fileQuery.h>

#include <ctime>

namespace
{

constexpr std::uint64_t stepsPerMillisecond = 10000;
constexpr std::uint64_t stepsPerSecond = 10000000;
constexpr std::int64_t secondsFrom1601To1970 = 11644473600;

BOOL refuse()
{
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
}

bool isLeap(int year)
{
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

bool isValid(const SYSTEMTIME& time)
{
    constexpr int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (time.wYear < 1601 || time.wYear > 30827 || time.wMonth < 1 || time.wMonth > 12)
        return false;
    const int last = days[time.wMonth - 1] + (time.wMonth == 2 && isLeap(time.wYear) ? 1 : 0);
    return time.wDay >= 1 && time.wDay <= last && time.wHour < 24 && time.wMinute < 60 &&
           time.wSecond < 60 && time.wMilliseconds < 1000;
}

std::tm toTm(const SYSTEMTIME& time)
{
    std::tm result = {};
    result.tm_year = time.wYear - 1900;
    result.tm_mon = time.wMonth - 1;
    result.tm_mday = time.wDay;
    result.tm_hour = time.wHour;
    result.tm_min = time.wMinute;
    result.tm_sec = time.wSecond;
    result.tm_isdst = -1;
    return result;
}

SYSTEMTIME fromTm(const std::tm& time, WORD milliseconds)
{
    return {static_cast<WORD>(time.tm_year + 1900), static_cast<WORD>(time.tm_mon + 1),
            static_cast<WORD>(time.tm_wday),        static_cast<WORD>(time.tm_mday),
            static_cast<WORD>(time.tm_hour),        static_cast<WORD>(time.tm_min),
            static_cast<WORD>(time.tm_sec),         milliseconds};
}

} // namespace

void GetSystemTimeAsFileTime(FILETIME* time) noexcept
{
    timespec now = {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    *time = krFileTime(now);
}

BOOL FileTimeToSystemTime(const FILETIME* fileTime, SYSTEMTIME* time) noexcept
{
    const std::uint64_t steps =
        (std::uint64_t{fileTime->dwHighDateTime} << 32) | fileTime->dwLowDateTime;
    if (steps >> 63 != 0)
        return refuse();
    const std::time_t seconds =
        static_cast<std::time_t>(steps / stepsPerSecond) - secondsFrom1601To1970;
    std::tm fields = {};
    if (::gmtime_r(&seconds, &fields) == nullptr)
        return refuse();
    *time = fromTm(fields, static_cast<WORD>(steps / stepsPerMillisecond % 1000));
    return 1;
}

BOOL SystemTimeToTzSpecificLocalTime(const TIME_ZONE_INFORMATION*, const SYSTEMTIME* universal,
                                     SYSTEMTIME* local) noexcept
{
    if (!isValid(*universal))
        return refuse();
    std::tm fields = toTm(*universal);
    const std::time_t seconds = ::timegm(&fields);
    std::tm result = {};
    if (::localtime_r(&seconds, &result) == nullptr)
        return refuse();
    *local = fromTm(result, universal->wMilliseconds);
    return 1;
}

BOOL TzSpecificLocalTimeToSystemTime(const TIME_ZONE_INFORMATION*, const SYSTEMTIME* local,
                                     SYSTEMTIME* universal) noexcept
{
    if (!isValid(*local))
        return refuse();
    std::tm fields = toTm(*local);
    const std::time_t seconds = ::mktime(&fields);
    std::tm result = {};
    if (::gmtime_r(&seconds, &result) == nullptr)
        return refuse();
    *universal = fromTm(result, local->wMilliseconds);
    return 1;
}
