#include <base/internal/log/lgLineFormat.h>

#include <base/hwCounter.h>
#include <base/internal/errors/calendar.h>
#include <base/internal/log/lgProcess.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>

namespace Kr
{

namespace
{

constexpr std::int64_t nanosecondsPerSecond = 1000000000;
constexpr char hexDigits[] = "0123456789abcdef";

std::int64_t systemTime()
{
    using namespace std::chrono;
    return duration_cast<nanoseconds>(system_clock::now().time_since_epoch()).count();
}

template <class Number>
void appendNumber(std::string& line, Number number)
{
    char digits[24];
    line.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

/// Appends blanks up to the column, and one at least.
void padTo(std::string& line, std::size_t column)
{
    line.append(line.size() < column ? column - line.size() : 1, ' ');
}

/// The letter after the backslash, or 0 for a character that has none.
char escapeLetter(char c)
{
    switch (c)
    {
    case '\n':
        return 'n';
    case '\r':
        return 'r';
    case '\t':
        return 't';
    default:
        return '\0';
    }
}

void appendEscape(std::string& line, unsigned char c, const char* numberPrefix)
{
    line += '\\';
    if (const char letter = escapeLetter(static_cast<char>(c)))
    {
        line += letter;
        return;
    }
    line += numberPrefix;
    line += hexDigits[c >> 4];
    line += hexDigits[c & 15];
}

bool isControl(unsigned char c)
{
    return c < 0x20 || c == 0x7F;
}

/// Appends the characters up to the first one for which `isSpecial` holds, and takes them off.
template <class IsSpecial>
void appendPlain(std::string& line, std::string_view& text, IsSpecial isSpecial)
{
    const auto end = std::find_if(text.begin(), text.end(), isSpecial);
    const auto length = static_cast<std::size_t>(end - text.begin());
    line.append(text.data(), length);
    text.remove_prefix(length);
}

void appendEscaped(std::string& line, std::string_view text)
{
    for (;;)
    {
        appendPlain(line, text, [](char c) { return isControl(static_cast<unsigned char>(c)); });
        if (text.empty())
            return;
        appendEscape(line, static_cast<unsigned char>(text.front()), "x");
        text.remove_prefix(1);
    }
}

bool isSpecialInJson(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return isControl(byte) || byte >= 0x80 || c == '"' || c == '\\';
}

bool isContinuation(unsigned char c)
{
    return (c & 0xC0) == 0x80;
}

/// The length of the well-formed UTF-8 sequence of several bytes at the start of the text, or 0.
std::size_t sequenceLength(std::string_view text)
{
    const auto byte = [text](std::size_t i)
    { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
    const unsigned lead = byte(0);
    const unsigned second = byte(1);
    const std::size_t length = lead >= 0xC2 && lead <= 0xDF   ? 2
                               : lead >= 0xE0 && lead <= 0xEF ? 3
                               : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                              : 0;
    // Overlong forms, surrogates, and what lies behind the last code point.
    if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
        (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F))
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if (!isContinuation(static_cast<unsigned char>(byte(i))))
            return 0;
    return length;
}

/// Appends what stands at the head of the text, a character that JSON wants escaped or a sequence
/// of several bytes, and takes it off.
void appendJsonSpecial(std::string& line, std::string_view& text)
{
    const auto c = static_cast<unsigned char>(text.front());
    const std::size_t length = c < 0x80 ? 1 : sequenceLength(text);
    if (c == '"' || c == '\\')
        line += '\\';
    if (isControl(c) || length == 0)
        appendEscape(line, c, "u00");
    else
        line.append(text.data(), length);
    text.remove_prefix(length == 0 ? 1 : length);
}

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

/// The reading of the wall clock that lies between the closest two stamps serves.
LgClock::LgClock()
    : _anchorStamp(0)
    , _anchorTime(0)
    , _rate(HwCounter::getRateNumerator())
{
    unsigned long long closest = ~0ULL;
    for (int i = 0; i < 8; ++i)
    {
        const unsigned long long before = HwCounter::timeStamp();
        const std::int64_t now = systemTime();
        const unsigned long long after = HwCounter::timeStamp();
        if (after - before >= closest)
            continue;
        closest = after - before;
        _anchorStamp = before + closest / 2;
        _anchorTime = now;
    }
}

std::int64_t LgClock::getTimeOfDay(unsigned long long timeStamp) const
{
    return _anchorTime + getElapsed(timeStamp);
}

std::int64_t LgClock::getElapsed(unsigned long long timeStamp) const
{
    const auto ticks = static_cast<std::int64_t>(timeStamp - _anchorStamp);
    return ticks / _rate * nanosecondsPerSecond + ticks % _rate * nanosecondsPerSecond / _rate;
}

LgLineFormat::LgLineFormat(const LgClock& clock, bool isJson, bool hasTimeStamps)
    : _clock(clock)
    , _isJson(isJson)
    , _hasTimeStamps(hasTimeStamps)
    , _process(std::to_string(LgProcess::getProcessId()))
    , _second(-1)
{
}

void LgLineFormat::append(std::string& line, const LgRecord& record)
{
    if (_isJson)
        appendObject(line, record);
    else
        appendText(line, record);
    line += '\n';
}

void LgLineFormat::appendJson(std::string& line, std::string_view text)
{
    line += '"';
    for (appendPlain(line, text, isSpecialInJson); !text.empty();
         appendPlain(line, text, isSpecialInJson))
        appendJsonSpecial(line, text);
    line += '"';
}

/// Microseconds in UTC; the date is formatted once in a second.
void LgLineFormat::appendTime(std::string& line, unsigned long long timeStamp)
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

void LgLineFormat::appendText(std::string& line, const LgRecord& record)
{
    std::size_t column = line.size();
    if (_hasTimeStamps)
    {
        appendTime(line, record.timeStamp);
        padTo(line, column += 29);
    }
    line += LgTypes::getLevelName(record.level);
    padTo(line, column += 16);
    line += _process;
    line += ':';
    if (record.thread == 0)
        line += "main";
    else
        appendNumber(line, record.thread);
    padTo(line, column += 16);
    if (record.group.empty())
        line += '-';
    appendEscaped(line, record.group);
    padTo(line, column + 14);
    appendEscaped(line, record.text);
}

void LgLineFormat::appendObject(std::string& line, const LgRecord& record)
{
    line += '{';
    if (_hasTimeStamps)
    {
        line += "\"time\":\"";
        appendTime(line, record.timeStamp);
        line += "\",";
    }
    line += "\"level\":\"";
    line += LgTypes::getLevelName(record.level);
    line += "\",\"process\":";
    line += _process;
    line += ",\"thread\":";
    appendNumber(line, record.thread);
    if (!record.group.empty())
    {
        line += ",\"group\":";
        appendJson(line, record.group);
    }
    if (record.lost != 0)
    {
        line += ",\"lost\":";
        appendNumber(line, record.lost);
    }
    line += ",\"text\":";
    appendJson(line, record.text);
    line += '}';
}

} // namespace Kr
