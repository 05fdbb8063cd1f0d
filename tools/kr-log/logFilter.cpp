#include "logFilter.h"

#include <base/osDateUtil.h>
#include <base/osDirFilter.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <string_view>

namespace KrLog
{

namespace
{

using Kr::OsDateTypes;
using Kr::OsDateUtil;

/// In small letters and without blanks.
std::string toPlain(std::string_view name)
{
    std::string plain;
    for (const char c : name)
        if (c != ' ')
            plain += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return plain;
}

bool matchesAny(const std::string& text, const std::vector<std::string>& patterns)
{
    return std::any_of(patterns.begin(), patterns.end(),
                       [&text](const std::string& pattern)
                       { return Kr::OsDirFilter::matches(text.c_str(), pattern.c_str()); });
}

/// Whether the text is the beginning of a time, which says at least the year.
bool isBeginningOfTime(std::string_view text)
{
    constexpr std::string_view form = "dddd-dd-ddTdd:dd:dd.ddddddZ";
    if (text.size() < 4 || text.size() > form.size())
        return false;
    return std::equal(text.begin(), text.end(), form.begin(),
                      [](char c, char want)
                      { return want == 'd' ? c >= '0' && c <= '9' : c == want; });
}

/// How long "15m" is; negative if the text is no length of time.
std::chrono::seconds readLength(std::string_view text)
{
    constexpr std::string_view units = "smhd";
    constexpr int seconds[] = {1, 60, 3600, 86400};
    int number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || rest + 1 != end || units.find(*rest) == units.npos)
        return std::chrono::seconds(-1);
    return std::chrono::seconds(std::int64_t{number} * seconds[units.find(*rest)]);
}

std::string getTimeBefore(std::chrono::seconds length)
{
    const auto now =
        OsDateUtil::getTimePoint(OsDateUtil::getCurrentTime(OsDateTypes::UniversalTime));
    return OsDateUtil::format(OsDateUtil::fromTimePoint(now - length, OsDateTypes::UniversalTime),
                              "%Y-%m-%dT%H:%M:%S.%fZ");
}

} // namespace

bool Filter::addLevel(const std::string& name)
{
    for (unsigned i = 0; i < Kr::LgTypes::NUM_LEVELS; ++i)
    {
        const auto level = static_cast<Kr::LgTypes::Level>(i);
        if (toPlain(Kr::LgTypes::getLevelName(level)) != toPlain(name))
            continue;
        _levels |= level == Kr::LgTypes::Profiling ? 1U << i : (2U << i) - 1;
        return true;
    }
    return false;
}

bool Filter::readMoment(const std::string& moment, std::string& time)
{
    if (isBeginningOfTime(moment))
    {
        time = moment;
        return true;
    }
    const std::chrono::seconds length = readLength(moment);
    if (length.count() < 0)
        return false;
    time = getTimeBefore(length);
    return true;
}

/// Times of one form compare as their texts do.
bool Filter::acceptsTime(const std::string& time) const
{
    if (_since.empty() && _until.empty())
        return true;
    return !time.empty() && time.compare(0, _since.size(), _since) >= 0 &&
           (_until.empty() || time.compare(0, _until.size(), _until) <= 0);
}

bool Filter::accepts(const Record& record) const
{
    const bool wantsAll = _levels == 0 && _groups.empty() && _threads.empty();
    if (!acceptsTime(record.time) || (record.isForeign() && !wantsAll))
        return false;
    if (_levels != 0 && (_levels >> record.level & 1) == 0)
        return false;
    if (!_groups.empty() && !matchesAny(record.group, _groups))
        return false;
    return _threads.empty() || matchesAny(record.thread, _threads) ||
           matchesAny(record.threadName, _threads) ||
           matchesAny(record.process + ':' + record.getThread(), _threads);
}

} // namespace KrLog
