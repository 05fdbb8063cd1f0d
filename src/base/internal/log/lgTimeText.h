#pragma once

/// @file
/// Internal to the library: the time of day of a time stamp as a text,
/// "2026-11-21T07:33:08.123456Z".

#include <base/internal/log/lgClock.h>

#include <cstdint>
#include <string>

namespace Kr
{

class LgTimeText
{
public:
    explicit LgTimeText(const LgClock& clock);

    /// Microseconds in UTC; the date is formatted once in a second.
    void append(std::string& line, unsigned long long timeStamp);

private:
    const LgClock& _clock;
    std::int64_t _second; ///< the one that `_secondText` shows
    std::string _secondText;
};

} // namespace Kr
