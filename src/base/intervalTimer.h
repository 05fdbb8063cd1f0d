#pragma once

/// @file
/// The stopwatch interface. `HwIntervalTimer` and `TodIntervalTimer` implement it.
/// @code{.cpp}
/// void timeRendering(Kr::IntervalTimer& timer)
/// {
///     timer.start();
///     render();
///     timer.stop();
///     std::cout << timer.getName() << ": " << timer.timeInterval() << " s\n";
/// }
/// @endcode
/// A timer belongs to one thread.

#include <base/krBaseApi.h>

namespace Kr
{

class KR_BASE_API IntervalTimer
{
public:
    IntervalTimer(const IntervalTimer&) = default;
    IntervalTimer& operator=(const IntervalTimer&) = default;
    virtual ~IntervalTimer();

    virtual void start() = 0;
    virtual void stop() = 0;
    /// Seconds from the last start to the last stop.
    virtual double timeInterval() const = 0;
    /// Seconds from the last start to now.
    virtual double sinceStart() const = 0;

    /// The timer keeps the pointer, not the text: the caller keeps the text alive. Returns the
    /// previous name.
    const char* setName(const char* name);
    const char* getName() const { return _name; }

protected:
    explicit IntervalTimer(const char* name);

private:
    const char* _name;
};

} // namespace Kr
