#include <base/hwIntervalTimer.h>

#include <base/hwCounter.h>

namespace Kr
{

HwIntervalTimer::HwIntervalTimer(const char* name)
    : IntervalTimer(name)
    , _start(0)
    , _stop(0)
{
    HwCounter::init();
}

void HwIntervalTimer::start()
{
    _start = HwCounter::timeStamp();
}

void HwIntervalTimer::stop()
{
    _stop = HwCounter::timeStamp();
}

double HwIntervalTimer::timeInterval() const
{
    return HwCounter::seconds(_start, _stop);
}

double HwIntervalTimer::sinceStart() const
{
    return HwCounter::seconds(_start, HwCounter::timeStamp());
}

} // namespace Kr
