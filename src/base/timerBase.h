#pragma once

/// @file
/// What a `Timer` offers, whatever its stopwatch.
/// @code{.cpp}
/// void report(const Kr::TimerBase& timer)
/// {
///     std::cout << timer.getName() << ": " << timer.getSeconds() << " s\n";
/// }
/// @endcode

#include <base/krBaseApi.h>

namespace Kr
{

class KR_BASE_API TimerBase
{
public:
    TimerBase(const TimerBase&) = default;
    TimerBase& operator=(const TimerBase&) = default;
    virtual ~TimerBase();

    /// The timer keeps the pointer, not the text: the caller keeps the text alive. Returns the
    /// previous name.
    virtual const char* setName(const char* name) = 0;
    virtual const char* getName() const = 0;

    virtual void start() = 0;
    virtual void stop() = 0;
    /// Stops, and forgets all spans.
    virtual void reset() = 0;

    /// Seconds of all spans since the last reset, the running one included.
    virtual double getSeconds() const = 0;

protected:
    TimerBase() = default;
};

} // namespace Kr
