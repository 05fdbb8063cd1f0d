#pragma once

/// @file
/// Halton's sequence in two or three dimensions: coordinate d of point i is the radical inverse of
/// i in a base of its own, by default 2, 3 and 5. Any number of points covers the cube evenly.
/// @code
/// Kr::RnHaltonMultiRng<double, 3> points;
/// double point[3];
/// points.getSample(point); // (1/2, 1/3, 1/5)
///
/// double x[256], y[256], z[256];
/// double* coordinates[] = {x, y, z};
/// points.getSequence(256, coordinates);
/// points.getBlock(4096, 256, coordinates); // those after the 4096th, for any thread
/// @endcode
/// Pitfalls: bases must have no common factor, or the points lie on lines; that is not checked.
/// Large bases need many points before they cover anything.
///
/// J. H. Halton: On the Efficiency of Certain Quasi-Random Sequences of Points in Evaluating
/// Multi-Dimensional Integrals. Numerische Mathematik 2, 1960.

#include <base/rnVanDerCorputRng.h>

#include <array>

namespace Kr
{

template <class T, unsigned int N>
class RnHaltonMultiRng : public RnUnitMultiRng<T, N>
{
public:
    /// With N bases, each at least 2.
    explicit RnHaltonMultiRng(unsigned int const* const primes);
    RnHaltonMultiRng();

    void getSample(T* const sample) override;
    /// @throws ExInternalError if `array`, or an array in it, is null
    void getSequence(unsigned int n, T** const array) override;
    /// The points that `n` calls after `restart(index)` would give; the generator stays as it is.
    /// @throws ExInternalError if `array`, or an array in it, is null
    void getBlock(unsigned int index, unsigned int n, T** const array) const;

    /// `restart(0)`
    void restart() override;
    /// The next point is that of `index + 1`, in every coordinate.
    void restart(unsigned int index);

    /// Copies out the N bases.
    void getPrimeNumbers(unsigned int* const primes) const;
    /// Takes N bases, each at least 2; the index is kept.
    void setPrimeNumbers(unsigned int const* const primes);
    char const* getName() const override;

private:
    std::array<RnVanDerCorputRng<T>, N> _rng;
};

extern template class KR_BASE_API RnHaltonMultiRng<float, 2>;
extern template class KR_BASE_API RnHaltonMultiRng<float, 3>;
extern template class KR_BASE_API RnHaltonMultiRng<double, 2>;
extern template class KR_BASE_API RnHaltonMultiRng<double, 3>;

} // namespace Kr
