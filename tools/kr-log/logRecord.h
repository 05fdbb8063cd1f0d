#pragma once

/// @file
/// A line of a log, taken apart.

#include <base/lgTypes.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace KrLog
{

struct Record
{
    std::string time; ///< "2026-11-21T07:33:08.123456Z"; empty: the line has none
    Kr::LgTypes::Level level = Kr::LgTypes::NUM_LEVELS; ///< NUM_LEVELS: this is no line of a log
    std::string process;
    std::string thread;     ///< its number, or "main"; empty where only its name is known
    std::string threadName; ///< empty: none
    std::string group;      ///< empty: none
    std::string text;       ///< all of a line that is no record
    std::uint64_t lost = 0; ///< how many lost messages it stands for
    bool isCut = false;

    bool isForeign() const { return level == Kr::LgTypes::NUM_LEVELS; }
    const std::string& getThread() const { return threadName.empty() ? thread : threadName; }
};

/// Takes a line apart, of either form: columns, or a JSON object. Any other line is a foreign one.
/// A thread's name of more characters than its column that has a blank in it is taken for a shorter
/// one: the JSON form is the exact one.
Record parseRecord(std::string_view line);

} // namespace KrLog
