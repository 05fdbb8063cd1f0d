#include <base/internal/errors/calendar.h>
#include <base/internal/errors/fixedText.h>
#include <base/internal/errors/raiseHistory.h>

#include <cstdio>

namespace Kr
{

namespace
{

bool isControl(char c) noexcept
{
    return static_cast<unsigned char>(c) < ' ' || c == '\x7F';
}

/// A control character as source code spells it: line breaks would tear the line apart, and others
/// change the terminal.
void appendEscape(FixedText& line, char c) noexcept
{
    if (c == '\n' || c == '\r' || c == '\t')
        return line.append(c == '\n' ? "\\n" : c == '\r' ? "\\r" : "\\t");
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\x%02X", static_cast<unsigned>(c));
    line.append(escape);
}

void appendEscaped(FixedText& line, const char* text) noexcept
{
    for (; *text != '\0'; ++text)
        if (isControl(*text))
            appendEscape(line, *text);
        else
            line.append(text, 1);
}

void appendTime(FixedText& line, std::chrono::system_clock::time_point moment) noexcept
{
    using std::chrono::duration_cast;
    using std::chrono::floor;
    const auto sinceEpoch = moment.time_since_epoch();
    const auto seconds = floor<std::chrono::seconds>(sinceEpoch);
    const auto rest = duration_cast<std::chrono::microseconds>(sinceEpoch - seconds);
    const CalendarTime time = getCalendarTime(seconds.count());
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d.%06d",
                  static_cast<int>(time.year), time.month, time.day, time.hour, time.minute,
                  time.second, static_cast<int>(rest.count()));
    line.append(text);
}

} // namespace

std::size_t RaiseHistory::format(Line& line, const TraceRaise& raise, const char* type)
{
    FixedText text(line, sizeof line - 1); // the end of the line is never cut
    char number[32];
    appendTime(text, raise.time);
    std::snprintf(number, sizeof number, " thread %lu ", static_cast<unsigned long>(raise.thread));
    text.append(number);
    if (*raise.threadName != '\0')
    {
        text.append("(");
        appendEscaped(text, raise.threadName);
        text.append(") ");
    }
    appendEscaped(text, raise.file);
    std::snprintf(number, sizeof number, ":%d ", static_cast<int>(raise.line));
    text.append(number);
    text.append(type);
    text.append(": ");
    appendEscaped(text, raise.reason);
    const std::size_t length = text.getLength();
    line[length] = '\n';
    line[length + 1] = '\0';
    return length + 1;
}

} // namespace Kr
