#include <base/periodicTimer.h>

#include <base/floatUtil.h>
#include <base/sleeper.h>

namespace Kr
{

using Lock = std::lock_guard<std::mutex>;

PeriodicTimer::PeriodicTimer(double interval)
    : _state{0., interval, false}
{
}

PeriodicTimer::PeriodicTimer(const PeriodicTimer& other)
    : _state(other.getState())
{
}

PeriodicTimer& PeriodicTimer::operator=(const PeriodicTimer& other)
{
    const State state = other.getState();
    const Lock lock(_mutex);
    _state = state;
    return *this;
}

PeriodicTimer::~PeriodicTimer() = default;

double PeriodicTimer::getCurrentTime()
{
    return Sleeper::getInstance().getCurrentTime();
}

double PeriodicTimer::getInterval() const
{
    return getState().interval;
}

long long PeriodicTimer::getCurrentCount() const
{
    const State state = getState();
    if (!state.isRunning)
        return 0;
    const double beats = (getCurrentTime() - state.startTime) / state.interval;
    return static_cast<long long>(FloatUtil::round(beats));
}

PeriodicTimer::State PeriodicTimer::getState() const
{
    const Lock lock(_mutex);
    return _state;
}

bool PeriodicTimer::isRunning() const
{
    return getState().isRunning;
}

void PeriodicTimer::setRunning(double startTime)
{
    const Lock lock(_mutex);
    _state.startTime = startTime;
    _state.isRunning = true;
}

void PeriodicTimer::setStopped()
{
    const Lock lock(_mutex);
    _state.isRunning = false;
}

void PeriodicTimer::storeInterval(double interval)
{
    const Lock lock(_mutex);
    _state.interval = interval;
}

} // namespace Kr
