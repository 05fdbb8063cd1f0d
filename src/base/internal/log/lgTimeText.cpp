#include <base/internal/log/lgTimeText.h>

#include <base/internal/errors/calendar.h>

#include <cstdio>

namespace Kr
{

namespace
{

constexpr std::int64_t nanosecondsPerSecond = 1000000000;

std::string secondText(std::int64_t second)
{
    const CalendarTime time = getCalendarTime(second);
    char text[64];
    const int length = std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d",
                                     static_cast<int>(time.year), time.month, time.day, time.hour,
                                     time.minute, time.second);
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
