#include <base/internal/log/lgClock.h>

#include <base/hwCounter.h>

#include <chrono>

namespace Kr
{

namespace
{

constexpr std::int64_t nanosecondsPerSecond = 1000000000;

std::int64_t systemTime()
{
    using namespace std::chrono;
    return duration_cast<nanoseconds>(system_clock::now().time_since_epoch()).count();
}

} // namespace

/// The reading of the wall clock that lies between the closest two stamps serves.
LgClock::LgClock()
    : _anchorStamp(0)
    , _anchorTime(0)
    , _rate(HwCounter::getRateNumerator())
{
    unsigned long long closest = ~0ULL;
    for (int i = 0; i < 8; ++i)
    {
        const unsigned long long before = HwCounter::timeStamp();
        const std::int64_t now = systemTime();
        const unsigned long long after = HwCounter::timeStamp();
        if (after - before >= closest)
            continue;
        closest = after - before;
        _anchorStamp = before + closest / 2;
        _anchorTime = now;
    }
}

LgClock::LgClock(unsigned long long anchorStamp, std::int64_t anchorTime, std::int64_t rate)
    : _anchorStamp(anchorStamp)
    , _anchorTime(anchorTime)
    , _rate(rate)
{
}

std::int64_t LgClock::getTimeOfDay(unsigned long long timeStamp) const
{
    return _anchorTime + getElapsed(timeStamp);
}

std::int64_t LgClock::getElapsed(unsigned long long timeStamp) const
{
    const auto ticks = static_cast<std::int64_t>(timeStamp - _anchorStamp);
    return ticks / _rate * nanosecondsPerSecond + ticks % _rate * nanosecondsPerSecond / _rate;
}

} // namespace Kr
