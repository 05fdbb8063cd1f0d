#include <base/internal/log/lgTimeText.h>

#include <cstdio>

namespace Kr
{

namespace
{

constexpr std::int64_t nanosecondsPerSecond = 1000000000;

/// Year, month and day of a day counted from 1970-01-01, in the Gregorian calendar. The year is
/// taken to begin in March, which puts the leap day at its end.
void civilDate(std::int64_t days, int& year, int& month, int& day)
{
    constexpr std::int64_t daysPerEra = 146097; // of 400 years
    days += 719468;                             // from 0000-03-01
    const std::int64_t era = (days >= 0 ? days : days - daysPerEra + 1) / daysPerEra;
    const std::int64_t dayOfEra = days - era * daysPerEra;
    const std::int64_t yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t marchMonth = (5 * dayOfYear + 2) / 153;
    day = static_cast<int>(dayOfYear - (153 * marchMonth + 2) / 5 + 1);
    month = static_cast<int>(marchMonth < 10 ? marchMonth + 3 : marchMonth - 9);
    year = static_cast<int>(yearOfEra + era * 400 + (month <= 2 ? 1 : 0));
}

std::string secondText(std::int64_t second)
{
    constexpr std::int64_t secondsPerDay = 86400;
    const std::int64_t days = (second >= 0 ? second : second - secondsPerDay + 1) / secondsPerDay;
    const int inDay = static_cast<int>(second - days * secondsPerDay);
    int year = 0;
    int month = 0;
    int day = 0;
    civilDate(days, year, month, day);
    char text[64];
    const int length = std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d", year,
                                     month, day, inDay / 3600, inDay / 60 % 60, inDay % 60);
    return std::string(text, static_cast<std::size_t>(length));
}

} // namespace

LgTimeText::LgTimeText(const LgClock& clock)
    : _clock(clock)
    , _second(-1)
{
}

void LgTimeText::append(std::string& line, unsigned long long timeStamp)
{
    const std::int64_t time = _clock.getTimeOfDay(timeStamp);
    const std::int64_t second = time / nanosecondsPerSecond;
    if (second != _second || _secondText.empty())
    {
        _second = second;
        _secondText = secondText(second);
    }
    line += _secondText;
    line += '.';
    auto fraction = static_cast<std::uint32_t>(time % nanosecondsPerSecond / 1000);
    for (std::uint32_t digit = 100000; digit != 0; digit /= 10)
    {
        line += static_cast<char>('0' + fraction / digit);
        fraction %= digit;
    }
    line += 'Z';
}

} // namespace Kr
