#include <base/todIntervalTimer.h>

namespace Kr
{

TodIntervalTimer::TodIntervalTimer(const char* name)
    : IntervalTimer(name)
{
}

double TodIntervalTimer::getDifference(const NativeTimer& later, const NativeTimer& earlier)
{
    const double seconds = later._seconds - earlier._seconds;
    if (later._milliseconds <= earlier._milliseconds)
        return seconds - (earlier._milliseconds - later._milliseconds) / 1000.;
    return (later._milliseconds - earlier._milliseconds) / 1000. + seconds;
}

void TodIntervalTimer::start()
{
    _start.refresh();
}

void TodIntervalTimer::stop()
{
    _stop.refresh();
}

double TodIntervalTimer::timeInterval() const
{
    return getDifference(_stop, _start);
}

double TodIntervalTimer::sinceStart() const
{
    NativeTimer now;
    now.refresh();
    return getDifference(now, _start);
}

} // namespace Kr
