// The counter over the system's clock, where the environment asks for it: the same interface, and
// the failure that only a clock that cannot be read shows.

#include "scenario.h"

#include <base/exSysError.h>
#include <base/hwCounter.h>
#include <base/osCpuInfo.h>

#include <cerrno>
#include <cstdlib>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

namespace
{

bool clockFails = false;

void rate()
{
    SCENARIO_CHECK(Kr::HwCounter::getRateNumerator() == 1000000000);
    timespec now{};
    const unsigned long long before = Kr::HwCounter::timeStamp();
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    const unsigned long long after = Kr::HwCounter::timeStamp();
    const unsigned long long nanoseconds =
        static_cast<unsigned long long>(now.tv_sec) * 1000000000 +
        static_cast<unsigned long long>(now.tv_nsec);
    SCENARIO_CHECK(before <= nanoseconds && nanoseconds <= after);
}

void failure()
{
    Kr::HwCounter::timeStamp();
    clockFails = true;
    try
    {
        Kr::HwCounter::timeStamp();
        SCENARIO_CHECK(false && "a clock that fails is reported");
    }
    catch (const Kr::ExSysErrorANSI& error)
    {
        SCENARIO_CHECK(error.getError() == EINVAL);
        SCENARIO_CHECK(std::strcmp(error.getFileName(), "src/base/osCpuInfoWinNT") == 0);
        SCENARIO_CHECK(error.getLineNo() == 457);
    }
    clockFails = false;
    SCENARIO_CHECK(Kr::HwCounter::timeStamp() > 0);
}

} // namespace

/// Takes the place of the system's own in this program and in the libraries that it loads.
extern "C" [[gnu::visibility("default")]] int clock_gettime(clockid_t clock, timespec* now) noexcept
{
    if (!clockFails)
        return static_cast<int>(::syscall(SYS_clock_gettime, clock, now));
    errno = EINVAL;
    return -1;
}

int main(int argc, char** argv)
{
    ::setenv("KR_COUNTER_SOURCE", "system", 1);
    const Scenario::Case cases[] = {{"rate", rate}, {"failure", failure}};
    return Scenario::run(cases, argc, argv);
}
