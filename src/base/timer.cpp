#include <base/timer.imp>

namespace Kr
{

TimerBase::~TimerBase() = default;

template class Timer<HwIntervalTimer>;
template class Timer<TodIntervalTimer>;

} // namespace Kr
