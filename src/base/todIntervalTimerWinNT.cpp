#include <base/todIntervalTimer.h>

#include <platform/platform.h>

namespace Kr
{

void TodIntervalTimer::NativeTimer::refresh()
{
    __timeb64 now; // the 64-bit form: the other one ends in 2038
    _ftime64(&now);
    _seconds = static_cast<double>(now.time);
    _milliseconds = static_cast<double>(now.millitm);
}

} // namespace Kr
