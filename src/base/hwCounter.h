#pragma once

/// @file
/// The process's clock for measuring: a monotonic 64-bit tick count.
/// @code
/// const unsigned long long start = Kr::HwCounter::timeStamp();
/// render();
/// std::cout << Kr::HwCounter::seconds(start, Kr::HwCounter::timeStamp()) << " s\n";
/// @endcode
/// The rate, in ticks per second, is exact, the same for the life of the process, and fits a
/// positive 32-bit integer, so that it can be the rate of a `DtRefTime`. Ticks count from an
/// arbitrary moment: only differences mean something.
///
/// Taking a stamp reads a counter and shifts it: no lock, no allocation, no division. The first
/// call of any operation builds the engine; before the library has started that includes measuring
/// the counter, some milliseconds. Every operation may be called by any thread.
///
/// Pitfalls: a stamp is not a fence. The processor may read the counter while instructions before
/// it, loads above all, are still under way: some tens of ticks. Stamps that one thread takes do
/// not run backwards; when one thread compares its stamp to another thread's, a difference below
/// 100 nanoseconds says nothing about which came first. The rate of a counter that is measured
/// differs by a few parts per million from one process to the next, so tick counts do not travel
/// between processes; differences in seconds do. See docs/clocks.md for where the ticks come from.

#include <base/internal/clocks/hwCounterEng.h>
#include <base/krBaseApi.h>

#include <atomic>
#include <iosfwd>

namespace Kr
{

class KR_BASE_API HwCounter
{
public:
    /// The current tick count.
    static unsigned long long timeStamp();

    /// Seconds from one tick count to another; negative if `end` comes first.
    static double seconds(unsigned long long start, unsigned long long end);

    /// The current tick count in seconds.
    static double seconds();

    /// Seconds per tick.
    static double resolution();

    /// The rate in ticks per second is numerator over denominator; the denominator is 1.
    static int getRateNumerator();
    static int getRateDenominator();

    /// Writes the engine's rate and cycle, a line each.
    static void dump(std::ostream& os);

private:
    friend class HwIntervalTimer;

    static const HwCounterEng& init();
    static const HwCounterEng& createEngine();

    static std::atomic<const HwCounterEng*> _engine;
};

} // namespace Kr

#include <base/hwCounter.inline>
