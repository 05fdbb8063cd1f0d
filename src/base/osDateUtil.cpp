#include <base/osDateUtil.h>

#include <base/assert.h>
#include <base/internal/os/osCalendar.h>
#include <base/osDateEx.h>
#include <base/raise.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace Kr
{

namespace
{

constexpr int firstYear = 1601;
constexpr int lastYear = 30827;

constexpr const char* weekDays[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                    "Thursday", "Friday", "Saturday"};
constexpr const char* months[] = {"January",   "February", "March",    "April",
                                  "May",       "June",     "July",     "August",
                                  "September", "October",  "November", "December"};

void appendNumber(std::string& text, int width, std::int64_t value)
{
    char digits[24];
    std::snprintf(digits, sizeof digits, "%0*lld", width, static_cast<long long>(value));
    text += digits;
}

void appendOffset(std::string& text, const OsDateTypes::DateRep& date)
{
    if (date.getMode() == OsDateTypes::UniversalTime)
    {
        text += 'Z';
        return;
    }
    const int minutes = std::abs(date.getUtcOffset());
    text += date.getUtcOffset() < 0 ? '-' : '+';
    appendNumber(text, 2, minutes / 60);
    text += ':';
    appendNumber(text, 2, minutes % 60);
}

std::int64_t roundToMicroseconds(double seconds)
{
    return static_cast<std::int64_t>(std::floor(seconds * 1e6 + 0.5));
}

/// One conversion; false if there is none of that letter.
bool appendConversion(std::string& text, const OsDateTypes::DateRep& date, char conversion)
{
    const auto number = [&](int width, std::int64_t value) { appendNumber(text, width, value); };
    const auto whole = static_cast<int>(date.getSeconds());
    switch (conversion)
    {
    case 'Y':
        number(4, date.getYear());
        return true;
    case 'y':
        number(2, date.getYear() % 100);
        return true;
    case 'm':
        number(2, date.getMonth());
        return true;
    case 'd':
        number(2, date.getDay());
        return true;
    case 'H':
        number(2, date.getHour());
        return true;
    case 'M':
        number(2, date.getMinute());
        return true;
    case 'S':
        number(2, whole);
        return true;
    case 'f':
        number(6, std::min(std::int64_t{999999}, roundToMicroseconds(date.getSeconds() - whole)));
        return true;
    case 'j':
        number(3, date.getYearDay());
        return true;
    case 'a':
        text.append(weekDays[date.getWeekDay()], 3);
        return true;
    case 'A':
        text += weekDays[date.getWeekDay()];
        return true;
    case 'b':
        text.append(months[date.getMonth() - 1], 3);
        return true;
    case 'B':
        text += months[date.getMonth() - 1];
        return true;
    case 'F':
        text += OsDateUtil::format(date, "%Y-%m-%d");
        return true;
    case 'T':
        text += OsDateUtil::format(date, "%H:%M:%S");
        return true;
    case 'z':
        appendOffset(text, date);
        return true;
    case '%':
        text += '%';
        return true;
    default:
        return false;
    }
}

} // namespace

void OsDateUtil::makeTime(int year, int month, int day, int hour, int minute, double seconds,
                          OsDateTypes::TimeMode mode, OsDateTypes::DateRep& rep)
{
    const bool isDay =
        year >= firstYear && year <= lastYear && day >= 1 && day <= getDaysInMonth(year, month);
    const bool isTime =
        hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && seconds >= 0. && seconds < 60.;
    if (!isDay || !isTime)
        raise<OsDateEx::ExInvalidDate>(KR_HERE, year, month, day, hour, minute, seconds);
    OsDateTypes::DateRep made;
    made._year = year;
    made._month = month;
    made._day = day;
    made._hour = hour;
    made._minute = minute;
    made._seconds = seconds;
    made._mode = mode;
    if (mode == OsDateTypes::LocalTime)
        made._utcOffset = performGetOffset(made);
    rep = made;
}

OsDateTypes::DateRep OsDateUtil::getCurrentTime(OsDateTypes::TimeMode mode)
{
    return convert(fromMicroseconds(performGetCurrentTime()), mode);
}

OsDateTypes::DateRep OsDateUtil::convert(const OsDateTypes::DateRep& date,
                                         OsDateTypes::TimeMode mode)
{
    if (date._mode == mode)
        return date;
    const std::int64_t moment = date.getMicroseconds();
    const OsDateTypes::DateRep universal = fromMicroseconds(moment);
    if (mode == OsDateTypes::UniversalTime)
        return universal;
    const int offset = performGetOffset(universal);
    OsDateTypes::DateRep local =
        fromMicroseconds(moment + offset * OsCalendar::microsecondsPerMinute);
    local._utcOffset = offset;
    local._mode = OsDateTypes::LocalTime;
    return local;
}

OsDateUtil::TimePoint OsDateUtil::getTimePoint(const OsDateTypes::DateRep& date)
{
    return TimePoint(std::chrono::microseconds(date.getMicroseconds()));
}

OsDateTypes::DateRep OsDateUtil::fromTimePoint(TimePoint time, OsDateTypes::TimeMode mode)
{
    const OsDateTypes::DateRep date = fromMicroseconds(time.time_since_epoch().count());
    if (date._year < firstYear || date._year > lastYear)
        raise<OsDateEx::ExInvalidDate>(KR_HERE, date._year, date._month, date._day, date._hour,
                                       date._minute, date._seconds);
    return convert(date, mode);
}

int OsDateUtil::compare(const OsDateTypes::DateRep& lhs, const OsDateTypes::DateRep& rhs) noexcept
{
    return lhs.compare(rhs);
}

std::string OsDateUtil::format(const OsDateTypes::DateRep& date, const char* text)
{
    KR_ASSERT(text != nullptr);
    std::string result;
    for (const char* at = text; *at != '\0'; ++at)
        if (*at != '%')
            result += *at;
        else if (!appendConversion(result, date, *++at))
            raise<OsDateEx::ExInvalidFormat>(KR_HERE, text);
    return result;
}

bool OsDateUtil::isLeapYear(int year) noexcept
{
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int OsDateUtil::getDaysInMonth(int year, int month) noexcept
{
    constexpr int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (month < 1 || month > 12)
        return 0;
    return month == 2 && isLeapYear(year) ? 29 : days[month - 1];
}

int OsDateUtil::getWeekDay(int year, int month, int day) noexcept
{
    return OsCalendar::getWeekDay({year, month, day});
}

int OsDateUtil::getYearDay(int year, int month, int day) noexcept
{
    return OsCalendar::getYearDay({year, month, day});
}

OsDateTypes::DateRep OsDateUtil::fromMicroseconds(std::int64_t microseconds) noexcept
{
    constexpr std::int64_t perMinute = OsCalendar::microsecondsPerMinute;
    const std::int64_t days = OsCalendar::floorDivide(microseconds, OsCalendar::microsecondsPerDay);
    const std::int64_t rest = microseconds - days * OsCalendar::microsecondsPerDay;
    const OsCalendar::Day day = OsCalendar::getDay(days);
    OsDateTypes::DateRep date;
    date._year = day.year;
    date._month = day.month;
    date._day = day.day;
    date._hour = static_cast<int>(rest / (60 * perMinute));
    date._minute = static_cast<int>(rest / perMinute % 60);
    date._seconds = static_cast<double>(rest % perMinute) / 1e6;
    return date;
}

} // namespace Kr
