#include "logSummary.h"

#include "logJson.h"

#include <base/exBase.h>
#include <base/osDateUtil.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ostream>

namespace KrLog
{

namespace
{

constexpr std::size_t secondLength = 19; // of "2026-11-21T07:33:08"

/// Seconds since 1970; 0 for a time that there is not.
double toSeconds(const std::string& time)
{
    const auto number = [&time](std::size_t at, std::size_t length)
    { return std::atoi(time.substr(at, length).c_str()); };
    try
    {
        Kr::OsDateTypes::DateRep date;
        Kr::OsDateUtil::makeTime(number(0, 4), number(5, 2), number(8, 2), number(11, 2),
                                 number(14, 2), std::strtod(time.substr(17, 9).c_str(), nullptr),
                                 Kr::OsDateTypes::UniversalTime, date);
        return std::chrono::duration<double>(Kr::OsDateUtil::getTimePoint(date).time_since_epoch())
            .count();
    }
    catch (const Kr::ExBase&)
    {
        return 0.;
    }
}

std::string rate(std::uint64_t messages, double seconds)
{
    char text[32] = "-";
    if (seconds > 0.)
        std::snprintf(text, sizeof text, "%.1f", static_cast<double>(messages) / seconds);
    return text;
}

void printRow(std::ostream& out, const std::string& messages, const std::string& perSecond,
              const std::string& most, const std::string& level, const std::string& group)
{
    char text[64];
    std::snprintf(text, sizeof text, "%10s %10s %10s  %-14s  ", messages.c_str(), perSecond.c_str(),
                  most.c_str(), level.c_str());
    out << text << group << '\n';
}

} // namespace

void Summary::add(const Record& record)
{
    _lost += record.lost;
    _cut += record.isCut ? 1 : 0;
    _foreign += record.isForeign() ? 1 : 0;
    if (record.isForeign() || record.lost != 0)
        return;
    if (!record.time.empty())
    {
        _first = _first.empty() ? record.time : std::min(_first, record.time);
        _last = std::max(_last, record.time);
    }
    count(_counts[{record.group, record.level}], record.time);
    count(_all, record.time);
}

void Summary::count(Count& count, const std::string& time)
{
    ++count.messages;
    if (time.empty())
        return;
    if (time.compare(0, secondLength, count.second) != 0)
    {
        count.second = time.substr(0, secondLength);
        count.inSecond = 0;
    }
    count.most = std::max(count.most, ++count.inSecond);
}

double Summary::getSeconds() const
{
    return _first.empty() ? 0. : toSeconds(_last) - toSeconds(_first);
}

void Summary::print(std::ostream& out) const
{
    const double seconds = getSeconds();
    if (!_first.empty())
        out << "from " << _first << " to " << _last << '\n';
    printRow(out, "messages", "a second", "at most", "level", "group");
    for (const auto& [key, count] : _counts)
    {
        std::string group;
        appendVisible(group, key.first.empty() ? "-" : key.first);
        printRow(out, std::to_string(count.messages), rate(count.messages, seconds),
                 std::to_string(count.most), Kr::LgTypes::getLevelName(key.second), group);
    }
    printRow(out, std::to_string(_all.messages), rate(_all.messages, seconds),
             std::to_string(_all.most), "all", "");
    out << "lost: " << _lost << '\n';
    if (_cut != 0)
        out << "cut: " << _cut << '\n';
    if (_foreign != 0)
        out << "lines of no log: " << _foreign << '\n';
}

} // namespace KrLog
