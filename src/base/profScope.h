#pragma once

/// @file
/// Guards that time the scope they stand in, however it is left.
/// @code
/// Kr::Timer<Kr::HwIntervalTimer> loading("loading");
/// Kr::Profiler<Kr::HwIntervalTimer> frame("frame");
/// while (nextFrame())
/// {
///     const Kr::ProfCycle cycle(frame); // start; stop and endCycle at the end of the scope
///     {
///         const Kr::ProfSpan span(loading); // start, and stop at the end of the scope
///         load();
///     }
///     render();
/// }
/// @endcode
/// When an exception leaves the scope, a span is stopped and counted, since the time has passed. A
/// cycle is cancelled: the statistics are about finished work, and half a frame would be a very
/// fast one.
///
/// A guard does what the calls by hand would do, at their cost, and belongs to the thread of what
/// it times. It holds a reference: what it times outlives it. A clock that cannot be read at the
/// end is taken for a span that was not measured, because a destructor cannot raise.

#include <exception>

namespace Kr
{

/// A span of anything with `start` and `stop`: a `Timer`, a `Profiler`, a stopwatch.
template <class Stopwatch>
class ProfSpan
{
public:
    explicit ProfSpan(Stopwatch& stopwatch)
        : _stopwatch(stopwatch)
    {
        _stopwatch.start();
    }

    ~ProfSpan()
    {
        try
        {
            _stopwatch.stop();
        }
        catch (...) // NOLINT(bugprone-empty-catch): not measured; see above
        {
        }
    }

    ProfSpan(const ProfSpan&) = delete;
    ProfSpan& operator=(const ProfSpan&) = delete;

private:
    Stopwatch& _stopwatch;
};

/// A cycle of a `Profiler`, of one span.
template <class Profiler>
class ProfCycle
{
public:
    explicit ProfCycle(Profiler& profiler)
        : _profiler(profiler)
        , _exceptions(std::uncaught_exceptions())
    {
        _profiler.start();
    }

    ~ProfCycle()
    {
        try
        {
            end();
        }
        catch (...)
        {
            _profiler.cancelCycle();
        }
    }

    ProfCycle(const ProfCycle&) = delete;
    ProfCycle& operator=(const ProfCycle&) = delete;

private:
    void end()
    {
        _profiler.stop();
        if (std::uncaught_exceptions() > _exceptions)
            _profiler.cancelCycle();
        else
            _profiler.endCycle();
    }

    Profiler& _profiler;
    int _exceptions; ///< under way when the cycle began, as in a destructor
};

} // namespace Kr
