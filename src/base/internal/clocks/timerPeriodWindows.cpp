#include <base/internal/clocks/timerPeriod.h>

#include <platform/platform.h>

namespace Kr
{

namespace
{

TIMECAPS getCapabilities()
{
    TIMECAPS capabilities{1, 1}; // what every device can do
    timeGetDevCaps(&capabilities, sizeof capabilities);
    return capabilities;
}

} // namespace

double TimerPeriod::getResolution()
{
    return getCapabilities().wPeriodMin / 1000.;
}

unsigned int TimerPeriod::getGreatestDelay()
{
    return getCapabilities().wPeriodMax;
}

TimerPeriod::TimerPeriod()
    : _period(static_cast<unsigned int>(getResolution() * 1000.))
{
    timeBeginPeriod(_period);
}

TimerPeriod::~TimerPeriod()
{
    timeEndPeriod(_period);
}

} // namespace Kr
