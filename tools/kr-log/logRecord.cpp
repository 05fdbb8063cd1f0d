#include "logRecord.h"

#include "logJson.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace KrLog
{

namespace
{

using Level = Kr::LgTypes::Level;

constexpr std::size_t timeLength = 27;
constexpr std::size_t timeWidth = 29; // of the columns, blanks included
constexpr std::size_t levelWidth = 16;
constexpr std::size_t threadWidth = 16;
constexpr std::size_t groupWidth = 14;

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isNumber(std::string_view text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), isDigit);
}

bool isTime(std::string_view text)
{
    constexpr std::string_view form = "dddd-dd-ddTdd:dd:dd.ddddddZ";
    return text.size() == form.size() &&
           std::equal(text.begin(), text.end(), form.begin(),
                      [](char c, char want) { return want == 'd' ? isDigit(c) : c == want; });
}

Level findLevel(std::string_view name)
{
    for (unsigned i = 0; i < Kr::LgTypes::NUM_LEVELS; ++i)
        if (Kr::LgTypes::getLevelName(static_cast<Level>(i)) == name)
            return static_cast<Level>(i);
    return Kr::LgTypes::NUM_LEVELS;
}

/// How many messages a text stands for whose number comes behind the prefix.
std::uint64_t numberBehind(std::string_view text, std::string_view prefix)
{
    std::uint64_t number = 0;
    if (text.substr(0, prefix.size()) == prefix)
        std::from_chars(text.data() + prefix.size(), text.data() + text.size(), number);
    return number;
}

/// The columns do not say that a record stands for lost messages, but its text does.
std::uint64_t findLost(const Record& record)
{
    if (record.group.empty())
        return numberBehind(record.text, "Event overflow [");
    const bool tellsLoss =
        record.group == "Logger" && record.text.find(" messages were lost") != std::string::npos;
    return tellsLoss ? numberBehind(record.text, "") : 0;
}

/// The columns of a line from the left to the right.
class Columns
{
public:
    explicit Columns(std::string_view line)
        : _line(line)
    {
    }

    /// The next column, which ends at its width, or at the first blank behind that.
    std::string_view take(std::size_t width)
    {
        const std::size_t from = std::min(_at, _line.size());
        _column += width;
        std::size_t end = _column - 1;
        if (end <= from || end >= _line.size() || _line[end] != ' ')
            end = std::min(_line.find(' ', std::max(from, _column)), _line.size());
        _at = end + 1;
        std::string_view field = _line.substr(from, end - from);
        while (!field.empty() && field.back() == ' ')
            field.remove_suffix(1);
        return field;
    }

    std::string_view getRest() const { return _line.substr(std::min(_at, _line.size())); }

private:
    const std::string_view _line;
    std::size_t _at = 0;     // where the next column begins
    std::size_t _column = 0; // where it would if all before it fitted
};

bool takeThread(std::string_view field, Record& record)
{
    const std::size_t colon = field.find(':');
    if (colon == field.npos || !isNumber(field.substr(0, colon)))
        return false;
    const std::string_view thread = field.substr(colon + 1);
    record.process = field.substr(0, colon);
    (isNumber(thread) || thread == "main" ? record.thread : record.threadName) = thread;
    return true;
}

bool parseColumns(std::string_view line, Record& record)
{
    Columns columns(line);
    if (isTime(line.substr(0, timeLength)))
        record.time = columns.take(timeWidth);
    const Level level = findLevel(columns.take(levelWidth));
    if (level == Kr::LgTypes::NUM_LEVELS || !takeThread(columns.take(threadWidth), record))
        return false;
    record.group = columns.take(groupWidth);
    if (record.group == "-")
        record.group.clear();
    record.text = columns.getRest();
    record.level = level;
    record.lost = findLost(record);
    return true;
}

bool parseObject(std::string_view line, Record& record)
{
    std::string number;
    Level level = Kr::LgTypes::NUM_LEVELS;
    const bool isObject = readObject(line,
                                     [&](const std::string& name, const std::string& value)
                                     {
                                         if (name == "time")
                                             record.time = value;
                                         else if (name == "level")
                                             level = findLevel(value);
                                         else if (name == "process")
                                             record.process = value;
                                         else if (name == "thread")
                                             record.thread = value == "0" ? "main" : value;
                                         else if (name == "threadName")
                                             record.threadName = value;
                                         else if (name == "group")
                                             record.group = value;
                                         else if (name == "text")
                                             record.text = value;
                                         else if (name == "lost")
                                             record.lost = numberBehind(value, "");
                                         else if (name == "cut")
                                             record.isCut = value == "true";
                                     });
    record.level = level;
    return isObject && level != Kr::LgTypes::NUM_LEVELS &&
           (record.time.empty() || isTime(record.time));
}

} // namespace

Record parseRecord(std::string_view line)
{
    Record record;
    if (line.substr(0, 1) == "{" ? parseObject(line, record) : parseColumns(line, record))
        return record;
    record = Record();
    record.text = line;
    return record;
}

} // namespace KrLog
