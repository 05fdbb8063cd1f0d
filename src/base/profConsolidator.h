#pragma once

/// @file
/// The statistics of several profilers as one.
/// @code{.cpp}
/// void report(const std::vector<Kr::ProfilerBase*>& profilers)
/// {
///     Kr::ProfConsolidator all;
///     for (Kr::ProfilerBase* profiler : profilers)
///         all.consolidate(*profiler);
///     std::cout << all;
/// }
/// @endcode
/// Pitfall: a profiler without cycles has a least time of 0, and so pulls the consolidated one down
/// to 0.
///
/// A consolidator belongs to one thread, and the profilers rest while it reads them.

#include <base/krBaseApi.h>

#include <cstdint>
#include <iosfwd>

namespace Kr
{

class ProfCounters;
class ProfilerBase;

class KR_BASE_API ProfConsolidator
{
public:
    ProfConsolidator();
    ProfConsolidator(const ProfConsolidator&) = default;
    ProfConsolidator& operator=(const ProfConsolidator&) = default;

    /// Takes what the profiler has measured so far into the statistics.
    virtual void consolidate(ProfilerBase& profiler);

    virtual ~ProfConsolidator();

    /// @name Statistics, in seconds
    /// @{
    double totalTime() const { return _total; }
    /// 0 without cycles.
    double averageTime() const;
    /// 0 without cycles.
    double minTime() const;
    double maxTime() const { return _maximum; }
    std::int32_t cycles() const { return _cycles; }
    /// @}

    /// From now on the table ends in the statistics of the counters, as `Profiler::setCounters`.
    const ProfCounters* setCounters(const ProfCounters* counters);
    const ProfCounters* getCounters() const { return _counters; }

private:
    std::int32_t _cycles;
    double _total;
    double _minimum;
    double _maximum;
    const ProfCounters* _counters;
};

/// Writes a line for each statistic, as for a profiler.
KR_BASE_API std::ostream& operator<<(std::ostream& os, const ProfConsolidator& consolidator);

} // namespace Kr
