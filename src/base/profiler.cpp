#include <base/profiler.imp>

namespace Kr
{

template class Profiler<HwIntervalTimer>;
template class Profiler<TodIntervalTimer>;

} // namespace Kr
