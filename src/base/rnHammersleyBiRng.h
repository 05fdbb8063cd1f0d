#pragma once

/// @file
/// Hammersley's point set as pairs; see `RnHammersleyMultiRng`.
/// @code
/// Kr::RnHammersleyBiRng<float> pixels(64);
/// float x[64], y[64];
/// pixels.getSequence(64, x, y);
/// @endcode

#include <base/rnHammersleyMultiRng.h>

namespace Kr
{

template <class T>
class RnHammersleyBiRng : public RnUnitBiRng<T>
{
public:
    /// @throws ExInternalError if the length is 0
    explicit RnHammersleyBiRng(unsigned int length);

    void getSample(T& x, T& y) override;
    /// @throws ExInternalError if an array is null, or if there are not `n` points
    void getSequence(unsigned int n, T* array0, T* array1) override;
    T getEfficientFraction() const override;
    T getPdf(T x, T y) const override;

    void restart() override;
    char const* getName() const override;

private:
    RnHammersleyMultiRng<T, 2> _rng;
};

extern template class KR_BASE_API RnHammersleyBiRng<float>;
extern template class KR_BASE_API RnHammersleyBiRng<double>;

} // namespace Kr
