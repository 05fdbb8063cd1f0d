#pragma once

/// @file
/// Halton's sequence as pairs; see `RnHaltonMultiRng`.
/// @code
/// Kr::RnHaltonBiRng<float> lens(3, 5); // in place of 2 and 3
/// float x[64], y[64];
/// lens.getSequence(64, x, y);
/// @endcode

#include <base/rnHaltonMultiRng.h>
#include <base/rnPairedBiRng.h>

namespace Kr
{

extern template class KR_BASE_API RnPairedBiRng<float, RnHaltonMultiRng<float, 2>>;
extern template class KR_BASE_API RnPairedBiRng<double, RnHaltonMultiRng<double, 2>>;

template <class T>
class RnHaltonBiRng : public RnPairedBiRng<T, RnHaltonMultiRng<T, 2>>
{
public:
    /// With two bases, each at least 2 and without a common factor.
    RnHaltonBiRng(unsigned int p0, unsigned int p1);
    RnHaltonBiRng();

    void getPrimeNumbers(unsigned int& p0, unsigned int& p1) const;
};

extern template class KR_BASE_API RnHaltonBiRng<float>;
extern template class KR_BASE_API RnHaltonBiRng<double>;

} // namespace Kr
