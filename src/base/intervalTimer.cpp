#include <base/intervalTimer.h>

namespace Kr
{

IntervalTimer::IntervalTimer(const char* name)
    : _name(name)
{
}

IntervalTimer::~IntervalTimer() = default;

const char* IntervalTimer::setName(const char* name)
{
    const char* previous = _name;
    _name = name;
    return previous;
}

} // namespace Kr
