#pragma once

/// @file
/// Internal to the library: how a record of the log reads, one line of text in columns, or one JSON
/// object.
/// @verbatim
/// 2026-11-21T07:33:08.123456Z  Warning         4711:main     Database      no index, scanning
/// {"time":"2026-11-21T07:33:08.123456Z","level":"Warning","process":4711,"thread":0,...}
/// @endverbatim
/// A record stays one line whatever its text holds: control characters are escaped as in C
/// (`\n`, `\x1b`). Backslashes are not, so that paths stay readable; the JSON form is the exact
/// one.

#include <base/lgTypes.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace Kr
{

struct LgRecord
{
    LgTypes::Level level;
    unsigned long long timeStamp; ///< of the hardware counter, in ticks
    unsigned long thread;         ///< 0: the thread that started the logger
    std::string_view group;       ///< empty: none
    std::string_view text;
    int lost = 0; ///< how many messages the record stands for that were dropped
};

/// Turns time stamps into the time of day: the two clocks are read together once, and from then on
/// the counter alone tells the time, so that the lines of a thread never go back.
class LgClock
{
public:
    LgClock();

    /// Nanoseconds since 1970-01-01 00:00 UTC.
    std::int64_t getTimeOfDay(unsigned long long timeStamp) const;

    /// Nanoseconds since the clock was built.
    std::int64_t getElapsed(unsigned long long timeStamp) const;

private:
    unsigned long long _anchorStamp;
    std::int64_t _anchorTime;
    std::int64_t _rate;
};

class LgLineFormat
{
public:
    LgLineFormat(const LgClock& clock, bool isJson, bool hasTimeStamps);

    /// Appends the record's line, its line feed included.
    void append(std::string& line, const LgRecord& record);

    /// Appends the text as a JSON string, quotes included. Bytes that are not UTF-8 are taken for
    /// Latin-1.
    static void appendJson(std::string& line, std::string_view text);

private:
    void appendTime(std::string& line, unsigned long long timeStamp);
    void appendText(std::string& line, const LgRecord& record);
    void appendObject(std::string& line, const LgRecord& record);

    const LgClock& _clock;
    const bool _isJson;
    const bool _hasTimeStamps;
    const std::string _process;
    std::int64_t _second; ///< the one that `_secondText` shows
    std::string _secondText;
};

} // namespace Kr
