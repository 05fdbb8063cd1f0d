#pragma once

/// @file
/// Internal to the library: time stamps as the time of day. The two clocks are read together once,
/// and from then on the counter alone tells the time, so that the lines of a thread never go back.

#include <cstdint>

namespace Kr
{

class LgClock
{
public:
    LgClock();

    /// That of another process, as its getters told.
    LgClock(unsigned long long anchorStamp, std::int64_t anchorTime, std::int64_t rate);

    unsigned long long getAnchorStamp() const { return _anchorStamp; }
    std::int64_t getAnchorTime() const { return _anchorTime; }
    std::int64_t getRate() const { return _rate; }

    /// Nanoseconds since 1970-01-01 00:00 UTC.
    std::int64_t getTimeOfDay(unsigned long long timeStamp) const;

    /// Nanoseconds since the clock was built.
    std::int64_t getElapsed(unsigned long long timeStamp) const;

private:
    unsigned long long _anchorStamp;
    std::int64_t _anchorTime;
    std::int64_t _rate;
};

} // namespace Kr
