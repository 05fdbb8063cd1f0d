#pragma once

/// @file
/// A fine clock, and sleep to the millisecond.
/// @code
/// Kr::Sleeper& sleeper = Kr::Sleeper::getInstance();
/// const double begin = sleeper.getCurrentTime();
/// sleeper.sleep(0.002);
/// std::cout << "slept for " << sleeper.getCurrentTime() - begin << " s\n"; // a little over 0.002
/// @endcode
/// The system's own sleep wakes a thread when it is convenient: tens of microseconds late on one
/// system, up to 16 milliseconds on another. The sleeper waits for a multimedia timer instead,
/// which is as punctual as the system can be. For a regular beat use `PeriodicTimer`: a chain of
/// sleeps drifts.
///
/// The sleeper exists while the package `profiling` is up. Any thread may use it; each sleeps on an
/// event of its own, so sleeps do not disturb each other.
///
/// Pitfalls: a sleep is cut to whole milliseconds, so that 0.0005 does not sleep at all and 0.0025
/// sleeps for 2 milliseconds. An event is kept from a thread's first use of the sleeper until the
/// sleeper itself ends: let a pool of threads sleep, not a new thread each time.

#include <base/inSingleton.h>
#include <base/krBaseApi.h>

namespace Kr
{

class KR_BASE_API Sleeper
{
public:
    /// The process's sleeper; makes sure that the calling thread has its event. Raises
    /// `InSingletonEx::ExNotInitialized` unless `profiling` is up, and `ExSysErrorWindows` if the
    /// system has no event left.
    static Sleeper& getInstance();

    /// A new sleeper: for the package. Takes the 10 milliseconds in which the system's timers
    /// settle. Raises `ExSysErrorANSI` if the machine has no high-resolution counter.
    static Sleeper* create();

    Sleeper(const Sleeper&) = delete;
    Sleeper& operator=(const Sleeper&) = delete;

    /// Seconds on a clock that only goes forward, and has no known origin.
    virtual double getCurrentTime() = 0;

    /// The least sleep, in seconds.
    virtual double getResolution() = 0;

    /// Sleeps for so many seconds, cut to whole milliseconds; infinity sleeps for good. A system
    /// whose timers count milliseconds may end the last one early. Returns false at once for less
    /// than a millisecond, a negative number or a NaN.
    virtual bool sleep(double seconds) = 0;

    virtual ~Sleeper();

protected:
    Sleeper() = default;

    /// Gives the calling thread what it needs to sleep.
    virtual void prepareThread() = 0;
};

} // namespace Kr

extern template class KR_BASE_API Kr::InSingleton<Kr::Sleeper>;
