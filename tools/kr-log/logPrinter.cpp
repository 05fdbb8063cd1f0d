#include "logPrinter.h"

#include "logJson.h"

#include <algorithm>

namespace KrLog
{

namespace
{

/// What a terminal takes for the colour of each level.
constexpr const char* colours[] = {"\x1b[1;31m", "\x1b[1;31m", "\x1b[31m", "\x1b[33m",
                                   "",           "\x1b[2m",    "\x1b[36m"};
constexpr const char* plain = "\x1b[0m";

/// Appends blanks up to the column, and one at least.
void padTo(std::string& line, std::size_t column)
{
    line.append(std::max(column, line.size() + 1) - line.size(), ' ');
}

bool isNumber(const std::string& text)
{
    return !text.empty() && text.find_first_not_of("0123456789") == text.npos;
}

void appendMember(std::string& line, const char* name, const std::string& value)
{
    if (value.empty())
        return;
    line += line.size() == 1 ? "\"" : ",\"";
    line += name;
    line += "\":";
    line += value;
}

std::string quoted(const std::string& text)
{
    std::string value;
    if (!text.empty())
        appendJson(value, text);
    return value;
}

std::string threadNumber(const Record& record)
{
    if (record.thread == "main")
        return "0";
    return isNumber(record.thread) ? record.thread : "";
}

} // namespace

std::string toColumns(const Record& record, bool isColoured)
{
    std::string line;
    if (record.isForeign())
    {
        appendVisible(line, record.text);
        return line + '\n';
    }
    std::size_t column = 0;
    if (!record.time.empty())
    {
        line += record.time;
        padTo(line, column += 29);
    }
    line += Kr::LgTypes::getLevelName(record.level);
    padTo(line, column += 16);
    line += record.process + ':';
    appendVisible(line, record.getThread());
    padTo(line, column += 16);
    appendVisible(line, record.group.empty() ? "-" : record.group);
    padTo(line, column + 14);
    appendVisible(line, record.text);
    const std::string colour = isColoured ? colours[record.level] : "";
    return colour.empty() ? line + '\n' : colour + line + plain + '\n';
}

std::string toJson(const Record& record)
{
    std::string line = "{";
    appendMember(line, "time", quoted(record.time));
    if (!record.isForeign())
        appendMember(line, "level", quoted(Kr::LgTypes::getLevelName(record.level)));
    appendMember(line, "process", isNumber(record.process) ? record.process : "");
    appendMember(line, "thread", threadNumber(record));
    appendMember(line, "threadName", quoted(record.threadName));
    appendMember(line, "group", quoted(record.group));
    appendMember(line, "lost", record.lost != 0 ? std::to_string(record.lost) : "");
    appendMember(line, "cut", record.isCut ? "true" : "");
    std::string text;
    appendJson(text, record.text);
    appendMember(line, "text", text);
    return line + "}\n";
}

} // namespace KrLog
