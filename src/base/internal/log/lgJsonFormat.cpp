#include <base/internal/log/lgJsonFormat.h>

#include <base/internal/errors/processIdentity.h>
#include <base/internal/log/lgJson.h>
#include <base/internal/log/lgLineText.h>

namespace Kr
{

LgJsonFormat::LgJsonFormat(const LgClock& clock, bool hasTimeStamps)
    : LgJsonFormat(clock, hasTimeStamps, ProcessIdentity::getProcessId())
{
}

LgJsonFormat::LgJsonFormat(const LgClock& clock, bool hasTimeStamps, std::uint32_t process)
    : _time(clock)
    , _hasTimeStamps(hasTimeStamps)
    , _process(std::to_string(process))
{
}

void LgJsonFormat::append(std::string& line, const LgRecord& record)
{
    line += '{';
    if (_hasTimeStamps)
    {
        line += "\"time\":\"";
        _time.append(line, record.timeStamp);
        line += "\",";
    }
    line += "\"level\":\"";
    line += LgTypes::getLevelName(record.level);
    line += "\",\"process\":";
    line += _process;
    line += ",\"thread\":";
    LgLineText::appendNumber(line, record.thread);
    if (!record.threadName.empty())
    {
        line += ",\"threadName\":";
        LgJson::appendString(line, record.threadName);
    }
    if (!record.group.empty())
    {
        line += ",\"group\":";
        LgJson::appendString(line, record.group);
    }
    if (record.lost != 0)
    {
        line += ",\"lost\":";
        LgLineText::appendNumber(line, record.lost);
    }
    if (record.isCut)
        line += ",\"cut\":true";
    line += ",\"text\":";
    LgJson::appendString(line, record.text);
    line += "}\n";
}

} // namespace Kr
