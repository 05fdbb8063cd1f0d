#pragma once

/// @file
/// The interface of every generator of single values: uniform generators, low-discrepancy
/// sequences, shaped distributions and histograms. A sampler that takes an `RnRng` lets its caller
/// choose between them.
/// @code
/// Kr::RnVanDerCorputRng<double> points;
/// Kr::RnRng<double>& anyGenerator = points;
/// double times[16];
/// anyGenerator.getSequence(16, times); // several times faster than sixteen calls
/// @endcode
/// T is `float` or `double`. Pairs and vectors are `RnBiRng` and `RnMultiRng`.
///
/// Pitfalls: nothing locks; a generator, with the sources that it draws from, is used by one thread
/// at a time. A generator that takes a source borrows it: the source must live longer.

#include <base/krBaseApi.h>

namespace Kr
{

template <class T>
class RnRng
{
public:
    /// The next sample.
    virtual T operator()() = 0;
    /// The next sample, into `x`.
    virtual void getSample(T& x) = 0;
    /// The next `n` samples, in order, into the first `n` places of `array`: the same values that
    /// `n` single samples would be. The fast path of the sequences and generators of this library.
    virtual void getSequence(unsigned int n, T* array) = 0;

    /// The width of the interval in which samples fall.
    virtual T getEfficientWidth() const = 0;
    /// The lower end of that interval.
    virtual T getEfficientMin() const = 0;
    /// The upper end of that interval.
    virtual T getEfficientMax() const = 0;
    /// The fraction of that interval that the distribution actually covers; 1 for a uniform one.
    virtual T getEfficientFraction() const = 0;
    /// The probability density at `x`.
    virtual T getPdf(T x) const = 0;

    /// Goes back to the start of the sequence.
    virtual void restart() = 0;
    /// What the generator is called; the text lives for ever.
    virtual char const* getName() const = 0;

    virtual ~RnRng() = default;

protected:
    RnRng() = default;
    RnRng(const RnRng&) = default;
    RnRng& operator=(const RnRng&) = default;
};

extern template class KR_BASE_API RnRng<float>;
extern template class KR_BASE_API RnRng<double>;

} // namespace Kr
