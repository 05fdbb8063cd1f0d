#pragma once

/// @file
/// A regular beat: wakes a thread at a fixed interval and counts the beats.
/// @code
/// Kr::ObjPtr<Kr::PeriodicTimer> timer(Kr::PeriodicTimer::create(0.040)); // 25 beats a second
/// timer->start();
/// for (int frame = 0; frame < 100; ++frame)
/// {
///     const long long beat = timer->waitNextBeat();
///     std::cout << "beat " << beat << '\n'; // skips numbers if the work takes too long
/// }
/// timer->stop();
/// @endcode
/// The beats are multiples of the interval after the start, however late a thread comes to wait, so
/// they do not drift. One thread waits on a timer; any thread may start, stop or change it, and a
/// thread that waits returns when the timer is stopped or destroyed.
///
/// The time is the sleeper's: timers work while the package `profiling` is up.
///
/// Pitfall: the system's timers beat in whole milliseconds, to which the interval is cut, while the
/// count divides by the interval as it was given. With 1/60 s the two part company: use whole
/// milliseconds.

#include <base/krBaseApi.h>
#include <base/objPtr.h>

#include <mutex>

namespace Kr
{

class KR_BASE_API PeriodicTimer
{
public:
    /// A new timer, which is not running yet. Where the library was built with the runtime's
    /// assertions it first waits for a beat, and asserts that one comes on time, within 2
    /// resolutions, in half a second: so it takes no longer intervals.
    /// Raises `ExInternalError` for an interval, in seconds, that the system's timers cannot do:
    /// it names the interval and the range. Raises `ExSysErrorWindows` if the system has no event
    /// left.
    static ObjPtrRet<PeriodicTimer> create(double interval);

    /// The least interval in seconds.
    static double getResolution();

    /// The sleeper's time, in seconds.
    static double getCurrentTime();

    /// In seconds.
    double getInterval() const;

    /// How many beats have passed since the start, to the nearest; 0 when the timer is not running.
    long long getCurrentCount() const;

    /// Stops the timer, lets go who waits, and returns when they have gone.
    virtual ~PeriodicTimer();

    /// Starts the beat, and the count from 0. Returns false if the timer was running already.
    virtual bool start() = 0;

    /// Stops the beat and lets go who waits. Returns whether the timer was running.
    virtual bool stop() = 0;

    /// Waits for the next beat and returns the count. On a timer that is not running it waits until
    /// somebody starts it. Returns 0 if the timer is stopped or destroyed meanwhile.
    virtual long long waitNextBeat() = 0;

    /// Changes the interval and returns it. If the timer is running it starts anew, and the count
    /// from 0; who waits goes on waiting. Raises as `create` does, and then nothing has changed.
    virtual double setInterval(double interval) = 0;

protected:
    explicit PeriodicTimer(double interval);
    PeriodicTimer(const PeriodicTimer& other);
    PeriodicTimer& operator=(const PeriodicTimer& other);

    bool isRunning() const;
    void setRunning(double startTime);
    void setStopped();
    void storeInterval(double interval);

private:
    /// What the count is made of.
    struct State
    {
        double startTime; ///< seconds
        double interval;  ///< seconds
        bool isRunning;
    };

    State getState() const;

    State _state;
    mutable std::mutex _mutex; ///< guards the state
};

} // namespace Kr
