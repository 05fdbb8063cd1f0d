#pragma once

/// @file
/// Hammersley's point set as pairs; see `RnHammersleyMultiRng`.
/// @code
/// Kr::RnHammersleyBiRng<float> pixels(64);
/// float x[64], y[64];
/// pixels.getSequence(64, x, y);
/// @endcode

#include <base/rnHammersleyMultiRng.h>
#include <base/rnPairedBiRng.h>

namespace Kr
{

extern template class KR_BASE_API RnPairedBiRng<float, RnHammersleyMultiRng<float, 2>>;
extern template class KR_BASE_API RnPairedBiRng<double, RnHammersleyMultiRng<double, 2>>;

template <class T>
class RnHammersleyBiRng : public RnPairedBiRng<T, RnHammersleyMultiRng<T, 2>>
{
public:
    /// @throws ExInternalError if the length is 0
    explicit RnHammersleyBiRng(unsigned int length);

    unsigned int getLength() const;
};

extern template class KR_BASE_API RnHammersleyBiRng<float>;
extern template class KR_BASE_API RnHammersleyBiRng<double>;

} // namespace Kr
