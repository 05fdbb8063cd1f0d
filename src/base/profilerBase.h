#pragma once

/// @file
/// What a `Profiler` offers, whatever its stopwatch, and how it is written.
/// @code{.cpp}
/// void report(const Kr::ProfilerBase& profiler)
/// {
///     std::cout << profiler;
/// }
/// @endcode
/// The table of a profiler named "frame" after cycles of 1, 2 and 3 seconds:
/// @code{.unparsed}
/// Profiler frame:
/// Nb of cycles:           3
/// Total time:             6.000000
/// Average time:           2.000000
/// Minimum time:           1.000000
/// Maximum time:           3.000000
/// Standard dev:           1.000000
/// @endcode
/// With `ProfCounters` that were given to the profiler, four lines for each counter follow below
/// its path, with whole numbers to the last digit and others to three decimals:
/// @code{.unparsed}
/// \Processor(_Total)\% Processor Time:
/// Nb of samples:          12
/// Average value:          37.531
/// Minimum value:          12.250
/// Maximum value:          99
/// @endcode

#include <base/krBaseApi.h>

#include <cstdint>
#include <iosfwd>

namespace Kr
{

class LgStream;
class ProfCounters;

class KR_BASE_API ProfilerBase
{
public:
    ProfilerBase(const ProfilerBase&) = default;
    ProfilerBase& operator=(const ProfilerBase&) = default;
    virtual ~ProfilerBase();

    /// The profiler keeps the pointer, not the text: the caller keeps the text alive. Returns the
    /// previous name.
    virtual const char* setName(const char* name) = 0;
    virtual const char* getName() const = 0;

    /// @name Measuring
    /// @{
    virtual void start() = 0;
    virtual void stop() = 0;
    /// Ends a cycle of one or more spans. Without any span it counts with time 0.
    virtual void endCycle() = 0;
    /// Forgets all cycles.
    virtual void reset() = 0;
    /// @}

    /// @name Statistics, in seconds
    /// Of the finished cycles; all are 0 before the first one.
    /// @{

    /// The spans so far of the cycle in progress.
    virtual double currentCycleTime() const = 0;
    virtual double totalTime() const = 0;
    virtual double averageTime() const = 0;
    virtual double minTime() const = 0;
    virtual double maxTime() const = 0;
    /// The sample standard deviation; 0 below two cycles. Computed in one pass: for cycles that are
    /// all but equal, rounding can make it NaN.
    virtual double standardDeviation() const = 0;
    virtual std::int32_t cycles() const = 0;
    /// @}

    /// The system's counters that the table ends in; null for none.
    virtual const ProfCounters* getCounters() const;

protected:
    ProfilerBase() = default;

    /// Shows a measured span that ends now on the timeline, under the profiler's name.
    void recordSpan(double seconds) const;
};

/// Writes the name and a line for each statistic, in fixed notation with the stream's precision.
/// The stream's flags, width and fill are left as they were.
KR_BASE_API std::ostream& operator<<(std::ostream& os, const ProfilerBase& profiler);

/// Writes the same into a message, with nine digits after the point.
KR_BASE_API LgStream& operator<<(LgStream& stream, const ProfilerBase& profiler);

} // namespace Kr
