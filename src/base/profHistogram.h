#pragma once

/// @file
/// How times are spread: percentiles from a fixed amount of memory (12 KB).
/// @code
/// Kr::Profiler<Kr::HwIntervalTimer> profiler("frame");
/// Kr::ProfHistogram spread;
/// profiler.setHistogram(&spread);
/// // ... many cycles ...
/// std::cout << spread.getPercentile(99.) << " s or less in 99 of 100 cycles\n";
/// @endcode
/// Times are counted in buckets, 32 to each factor of two from 2^-30 s (0.93 ns) to 2^17 s (36 h).
/// A percentile within that range is off by at most 1/64 of itself (1.6 %); the least and the
/// greatest time are exact. Times below the range share one bucket, those above it another. A NaN
/// is counted with the times below.
///
/// Adding finds the bucket in the number's own bits: no search, no logarithm, no allocation. A
/// histogram belongs to one thread; `merge` joins those of several.
///
/// Source: the log-linear buckets of G. Tene, HdrHistogram, 2012.

#include <base/krBaseApi.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <iosfwd>

namespace Kr
{

class KR_BASE_API ProfHistogram
{
public:
    ProfHistogram();

    void add(double seconds) noexcept;
    /// Adds all that the other has counted.
    void merge(const ProfHistogram& other) noexcept;
    void reset() noexcept;

    std::uint64_t getCount() const noexcept { return _count; }
    /// 0 if nothing was added.
    double getMinimum() const noexcept;
    double getMaximum() const noexcept;

    /// The time that `percent` of the times do not exceed (nearest rank). 0 gives the least time,
    /// 100 the greatest; 0 if nothing was added.
    /// @throws ExInternalError unless 0 <= percent <= 100
    double getPercentile(double percent) const;

private:
    static constexpr int stepBits = 5;
    static constexpr int leastExponent = -30;
    static constexpr int endExponent = 17;
    /// With a bucket for what lies below, and one for what lies above.
    static constexpr std::size_t bucketCount =
        (std::size_t{endExponent - leastExponent} << stepBits) + 2;

    static std::size_t getBucket(double seconds) noexcept;
    static double getMiddle(std::size_t bucket) noexcept;

    std::array<std::uint64_t, bucketCount> _counts;
    std::uint64_t _count;
    double _minimum;
    double _maximum;
};

/// Writes the count, the least and the greatest time and the usual percentiles between them, in the
/// layout of a profiler.
KR_BASE_API std::ostream& operator<<(std::ostream& os, const ProfHistogram& histogram);

} // namespace Kr
