#pragma once

/// @file
/// The system's performance counters in the tables of profilers: what the machine did while the
/// program was timed.
/// @code
/// Kr::Profiler<Kr::HwIntervalTimer> frame("frame");
/// Kr::ProfCounters machine(0.5);
/// machine.add("\\Processor(_Total)\\% Processor Time");
/// machine.add("\\Memory\\Available Bytes");
/// frame.setCounters(&machine);
/// while (nextFrame())
/// {
///     frame.start();
///     render();
///     frame.stop();
///     frame.endCycle();
///     machine.sample();
/// }
/// std::cout << frame; // the table ends in the counters
/// @endcode
/// A sample collects all counters at once and takes those that have a value into their statistics.
/// A rate or a share of time is that of the time since the sample before: of two samples, one
/// before the work and one behind it, the value is the average over the work.
///
/// Pitfalls: a sample asks the system, which takes microseconds: stand outside of what is timed, or
/// give an interval. Averages are over samples, so take them at even times. For one thread at a
/// time.

#include <base/krBaseApi.h>
#include <base/prQuery.h>
#include <base/vector.h>

#include <cstdint>

namespace Kr
{

class KR_BASE_API ProfCounters
{
public:
    /// What the samples have shown of a counter; all 0 while there are none.
    struct Statistics
    {
        std::uint64_t samples = 0; ///< that had a value
        double average = 0.;
        double minimum = 0.;
        double maximum = 0.;
    };

    /// @param interval in seconds, from one sample to the next at least
    /// Raises `PrEx::ExSystem` if the system has no counters.
    explicit ProfCounters(double interval = 0.);
    ProfCounters(const ProfCounters&) = delete;
    ProfCounters& operator=(const ProfCounters&) = delete;
    ~ProfCounters();

    /// Adds a counter; raises as `PrQuery::add`.
    const PrCounter& add(const PrPath& path);

    /// The same for an instance that may come later.
    const PrCounter& addExpected(const PrPath& path);

    /// Takes a sample, unless the interval has not passed. Raises `PrEx::ExSystem` if nothing can
    /// be collected; the statistics stay as they were then.
    void sample();

    /// Forgets all samples.
    void reset() noexcept;

    /// In the order in which they were added.
    Vector<const PrCounter*> getCounters() const { return _query.getCounters(); }

    /// Of a counter of this object.
    Statistics getStatistics(const PrCounter& counter) const;

private:
    struct Row
    {
        const PrCounter* counter;
        Statistics statistics;
    };

    const PrCounter& addRow(const PrCounter& counter);
    bool isDue() const;

    const double _interval;
    unsigned long long _lastStamp = 0; ///< of the last sample; 0 before the first
    PrQuery _query;
    Vector<Row> _rows;
};

} // namespace Kr
