#pragma once

/// @file
/// Statistics over repeated cycles of the same work.
/// @code
/// Kr::Profiler<Kr::HwIntervalTimer> frame("frame");
/// Kr::ProfHistogram spread; // optional, for percentiles
/// frame.setHistogram(&spread);
/// while (nextFrame())
/// {
///     frame.start();
///     render();
///     frame.stop();
///     frame.endCycle();
/// }
/// std::cout << frame << spread;
/// @endcode
/// `ProfCycle` (<base/profScope.h>) writes the three calls as one guard, right when an exception
/// leaves it. A cycle is made of any number of spans from `start` to `stop`; `endCycle` takes their
/// sum into the statistics. A cycle costs two readings of the stopwatch and a few additions; it
/// neither locks nor allocates.
///
/// Pitfalls: a second `start` in a row drops the span that was running; a second `stop` in a row
/// counts the span from its start once more. `cycles` is a 32-bit count and wraps around.
///
/// A profiler belongs to one thread: give each thread its own and merge them with
/// `ProfConsolidator`. To profile with a stopwatch of one's own, include <base/profiler.imp>.

#include <base/hwIntervalTimer.h>
#include <base/krBaseApi.h>
#include <base/profHistogram.h>
#include <base/profilerBase.h>
#include <base/todIntervalTimer.h>

#include <cstdint>

namespace Kr
{

/// @tparam T the stopwatch: `HwIntervalTimer` or `TodIntervalTimer`, or one with their operations
template <class T>
class Profiler : public ProfilerBase
{
public:
    explicit Profiler(const char* name = "anonymous");

    const char* setName(const char* name) override;
    const char* getName() const override;

    void start() override;
    void stop() override;
    void endCycle() override;
    /// Forgets the spans of the cycle in progress, as if they had not been measured.
    void cancelCycle();
    /// Empties the histogram too.
    void reset() override;

    double currentCycleTime() const override;
    double totalTime() const override;
    double averageTime() const override;
    double minTime() const override;
    double maxTime() const override;
    double standardDeviation() const override;
    std::int32_t cycles() const override;

    /// From now on each cycle is also counted in the histogram; null for none, as at first. The
    /// histogram stays the caller's and outlives the profiler; copies of the profiler share it.
    /// Returns the previous one.
    ProfHistogram* setHistogram(ProfHistogram* histogram);
    ProfHistogram* getHistogram() const;

    /// From now on the profiler's table ends in the statistics of the counters; null for none, as
    /// at first. Whoever takes their samples is the caller, whose they stay; they outlive the
    /// profiler, and copies of it share them. Returns the previous ones.
    const ProfCounters* setCounters(const ProfCounters* counters);
    const ProfCounters* getCounters() const override;

private:
    T _stopwatch;
    double _current;
    double _total;
    double _sumOfSquares;
    double _minimum;
    double _maximum;
    std::int32_t _cycles;
    ProfHistogram* _histogram;
    const ProfCounters* _counters;
};

extern template class KR_BASE_API Profiler<HwIntervalTimer>;
extern template class KR_BASE_API Profiler<TodIntervalTimer>;

} // namespace Kr
