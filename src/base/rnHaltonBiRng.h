#pragma once

/// @file
/// Halton's sequence as pairs; see `RnHaltonMultiRng`.
/// @code
/// Kr::RnHaltonBiRng<float> lens(3, 5); // in place of 2 and 3
/// float x[64], y[64];
/// lens.getSequence(64, x, y);
/// @endcode

#include <base/rnHaltonMultiRng.h>

namespace Kr
{

template <class T>
class RnHaltonBiRng : public RnUnitBiRng<T>
{
public:
    /// With two bases, each at least 2 and without a common factor.
    RnHaltonBiRng(unsigned int p0, unsigned int p1);
    RnHaltonBiRng();

    void getSample(T& x, T& y) override;
    /// @throws ExInternalError if an array is null
    void getSequence(unsigned int n, T* array0, T* array1) override;
    /// The points that `n` calls after `restart(index)` would give; the generator stays as it is.
    void getBlock(unsigned int index, unsigned int n, T* array0, T* array1) const;
    T getEfficientFraction() const override;
    T getPdf(T x, T y) const override;

    void restart() override;
    /// The next point is that of `index + 1`.
    void restart(unsigned int index);
    void getPrimeNumbers(unsigned int& p0, unsigned int& p1) const;
    char const* getName() const override;

private:
    RnHaltonMultiRng<T, 2> _rng;
};

extern template class KR_BASE_API RnHaltonBiRng<float>;
extern template class KR_BASE_API RnHaltonBiRng<double>;

} // namespace Kr
