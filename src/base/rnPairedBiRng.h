#pragma once

/// @file
/// The points of a generator of vectors of two, as pairs: what `RnHaltonBiRng` and
/// `RnHammersleyBiRng` have in common.
/// @code
/// Kr::RnHaltonBiRng<double> points;
/// double x[64], y[64];
/// points.getSequence(64, x, y);
/// points.getBlock(4096, 64, x, y); // those after the 4096th, for any thread
/// @endcode
/// This is a base for the library's own sequences; take `RnBiRng` where any pairs will do.

#include <base/rnUnitRng.h>

namespace Kr
{

/// `Rng` is an index-based `RnMultiRng<T, 2>` on the unit square.
template <class T, class Rng>
class RnPairedBiRng : public RnUnitBiRng<T>
{
public:
    void getSample(T& x, T& y) override;
    /// @throws ExInternalError if an array is null, or the generator has no `n` points
    void getSequence(unsigned int n, T* array0, T* array1) override;
    /// The points that `n` calls after `restart(index)` would give; the generator stays as it is.
    /// @throws ExInternalError if an array is null
    void getBlock(unsigned int index, unsigned int n, T* array0, T* array1) const;
    T getEfficientFraction() const override;
    T getPdf(T x, T y) const override;

    /// `restart(0)`
    void restart() override;
    /// The next point is the one that follows `index` others.
    void restart(unsigned int index);
    char const* getName() const override;

protected:
    explicit RnPairedBiRng(const Rng& rng);

    Rng _rng;
};

} // namespace Kr
