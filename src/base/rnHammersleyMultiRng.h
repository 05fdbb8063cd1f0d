#pragma once

/// @file
/// Hammersley's point set of a fixed length: the first coordinate is the regular grid, the others
/// are radical inverses in the bases 2 and 3. More even than Halton's sequence, for those who know
/// the number of points beforehand.
/// @code
/// Kr::RnHammersleyMultiRng<double, 2> points(256);
/// double x[256], y[256];
/// double* coordinates[] = {x, y};
/// points.getSequence(256, coordinates);
/// @endcode
/// Pitfalls:
/// - only all of the points together are even. After `length` points the first coordinate starts
///   again while the others go on;
/// - `getSequence` always begins the first coordinate with the first grid point, and leaves its
///   index as it is. `getBlock` is what stepping gives.
///
/// J. M. Hammersley: Monte Carlo Methods for Solving Multivariable Problems. Annals of the New York
/// Academy of Sciences 86, 1960.

#include <base/rnVanDerCorputRng.h>

#include <array>

namespace Kr
{

template <class T, unsigned int N>
class RnHammersleyMultiRng : public RnUnitMultiRng<T, N>
{
public:
    /// @throws ExInternalError if the length is 0
    explicit RnHammersleyMultiRng(unsigned int length);

    void getSample(T* const sample) override;
    /// @throws ExInternalError if `array`, or an array in it, is null, or if there are not `n`
    /// points
    void getSequence(unsigned int n, T** const array) override;
    /// The points that `n` calls after `restart(index)` would give; the generator stays as it is.
    /// @throws ExInternalError if `array`, or an array in it, is null
    void getBlock(unsigned int index, unsigned int n, T** const array) const;

    /// `restart(0)`
    void restart() override;
    /// The next point is the one at `index`, which is below the length.
    void restart(unsigned int index);
    unsigned int getLength() const;
    char const* getName() const override;

private:
    T getGridPoint(unsigned int index) const;

    unsigned int _length;
    unsigned int _index;
    std::array<RnVanDerCorputRng<T>, N - 1> _rng;
};

template <class T, unsigned int N>
unsigned int RnHammersleyMultiRng<T, N>::getLength() const
{
    return _length;
}

extern template class KR_BASE_API RnHammersleyMultiRng<float, 2>;
extern template class KR_BASE_API RnHammersleyMultiRng<float, 3>;
extern template class KR_BASE_API RnHammersleyMultiRng<double, 2>;
extern template class KR_BASE_API RnHammersleyMultiRng<double, 3>;

} // namespace Kr
