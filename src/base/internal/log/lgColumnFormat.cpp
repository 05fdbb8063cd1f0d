#include <base/internal/log/lgColumnFormat.h>

#include <base/internal/errors/processIdentity.h>
#include <base/internal/log/lgLineText.h>

namespace Kr
{

namespace
{

/// Appends blanks up to the column, and one at least.
void padTo(std::string& line, std::size_t column)
{
    line.append(line.size() < column ? column - line.size() : 1, ' ');
}

constexpr auto mayBeControl = [](char c) { return LgLineText::isControl(c) || c == '\xC2'; };

void appendEscaped(std::string& line, std::string_view text)
{
    for (;;)
    {
        LgLineText::appendPlain(line, text, mayBeControl);
        if (text.empty())
            return;
        if (LgLineText::beginsWithHighControl(text))
            text.remove_prefix(1);
        else if (!LgLineText::isControl(text.front()))
        {
            line += text.front();
            text.remove_prefix(1);
            continue;
        }
        LgLineText::appendEscape(line, text.front(), "x");
        text.remove_prefix(1);
    }
}

} // namespace

LgColumnFormat::LgColumnFormat(const LgClock& clock, bool hasTimeStamps)
    : LgColumnFormat(clock, hasTimeStamps, ProcessIdentity::getProcessId())
{
}

LgColumnFormat::LgColumnFormat(const LgClock& clock, bool hasTimeStamps, std::uint32_t process)
    : _time(clock)
    , _hasTimeStamps(hasTimeStamps)
    , _process(std::to_string(process))
{
}

void LgColumnFormat::append(std::string& line, const LgRecord& record)
{
    std::size_t column = line.size();
    if (_hasTimeStamps)
    {
        _time.append(line, record.timeStamp);
        padTo(line, column += 29);
    }
    line += LgTypes::getLevelName(record.level);
    padTo(line, column += 16);
    line += _process;
    line += ':';
    if (!record.threadName.empty())
        appendEscaped(line, record.threadName);
    else if (record.thread == 0)
        line += "main";
    else
        LgLineText::appendNumber(line, record.thread);
    padTo(line, column += 16);
    if (record.group.empty())
        line += '-';
    appendEscaped(line, record.group);
    padTo(line, column + 14);
    appendEscaped(line, record.text);
    line += '\n';
}

} // namespace Kr
