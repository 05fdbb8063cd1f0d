#include <base/profHistogram.h>

#include <base/assert.h>
#include <base/internal/prof/profTable.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace Kr
{

ProfHistogram::ProfHistogram()
{
    reset();
}

void ProfHistogram::reset() noexcept
{
    _counts.fill(0);
    _count = 0;
    _minimum = std::numeric_limits<double>::infinity();
    _maximum = -std::numeric_limits<double>::infinity();
}

std::size_t ProfHistogram::getBucket(double seconds) noexcept
{
    if (!(seconds >= std::ldexp(1., leastExponent)))
        return 0;
    if (seconds >= std::ldexp(1., endExponent))
        return bucketCount - 1;
    // The exponent and the leading bits of the fraction, read as one number, count the buckets.
    constexpr int fractionBits = std::numeric_limits<double>::digits - 1;
    constexpr int bias = std::numeric_limits<double>::max_exponent - 1;
    std::uint64_t bits;
    std::memcpy(&bits, &seconds, sizeof bits);
    const std::uint64_t step = bits >> (fractionBits - stepBits);
    return static_cast<std::size_t>(step - (std::uint64_t{bias + leastExponent} << stepBits)) + 1;
}

double ProfHistogram::getMiddle(std::size_t bucket) noexcept
{
    constexpr int steps = 1 << stepBits;
    const int step = static_cast<int>(bucket) - 1;
    return std::ldexp(1. + (step % steps + 0.5) / steps, leastExponent + step / steps);
}

void ProfHistogram::add(double seconds) noexcept
{
    ++_counts[getBucket(seconds)];
    ++_count;
    _minimum = std::min(_minimum, seconds);
    _maximum = std::max(_maximum, seconds);
}

void ProfHistogram::merge(const ProfHistogram& other) noexcept
{
    for (std::size_t i = 0; i < bucketCount; ++i)
        _counts[i] += other._counts[i];
    _count += other._count;
    _minimum = std::min(_minimum, other._minimum);
    _maximum = std::max(_maximum, other._maximum);
}

double ProfHistogram::getMinimum() const noexcept
{
    return _count != 0 ? _minimum : 0.;
}

double ProfHistogram::getMaximum() const noexcept
{
    return _count != 0 ? _maximum : 0.;
}

double ProfHistogram::getPercentile(double percent) const
{
    KR_ASSERT(percent >= 0. && percent <= 100.);
    const double rank = std::ceil(percent * static_cast<double>(_count) / 100.);
    if (rank <= 1.)
        return getMinimum();
    if (rank >= static_cast<double>(_count))
        return getMaximum();
    std::size_t bucket = 0;
    for (std::uint64_t below = _counts[0]; static_cast<double>(below) < rank;)
        below += _counts[++bucket];
    if (bucket == 0)
        return _minimum;
    if (bucket == bucketCount - 1)
        return _maximum;
    return std::clamp(getMiddle(bucket), _minimum, _maximum);
}

std::ostream& operator<<(std::ostream& os, const ProfHistogram& histogram)
{
    ProfTable table(os);
    table.writeLine("Nb of times:", histogram.getCount());
    table.writeLine("Minimum time:", histogram.getMinimum());
    table.writeLine("50 percent:", histogram.getPercentile(50.));
    table.writeLine("90 percent:", histogram.getPercentile(90.));
    table.writeLine("99 percent:", histogram.getPercentile(99.));
    table.writeLine("99.9 percent:", histogram.getPercentile(99.9));
    table.writeLine("Maximum time:", histogram.getMaximum());
    return os << std::endl;
}

} // namespace Kr
