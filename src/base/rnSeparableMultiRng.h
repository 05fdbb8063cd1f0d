#pragma once

/// @file
/// Triples whose coordinates are successive samples of one source.
/// @code
/// Kr::RnLecuyerUniformRng<double> uniform;
/// Kr::RnGaussianRng<double> gaussian(&uniform);
/// Kr::RnSeparableMultiRng<double, 3> jitter(&gaussian);
/// double offset[3];
/// jitter.getSample(offset);
/// @endcode
/// Pitfall: successive samples of a low-discrepancy sequence belong together; take
/// `RnHaltonMultiRng` for points of a cube.

#include <base/rnMultiRng.h>
#include <base/rnRng.h>

namespace Kr
{

/// N is 3.
template <class T, unsigned int N>
class RnSeparableMultiRng : public RnMultiRng<T, N>
{
public:
    /// Borrows the source.
    /// @throws ExInternalError if it is null
    explicit RnSeparableMultiRng(RnRng<T>* uniRng);

    void getSample(T* const sample) override;
    void getSequence(unsigned int n, T** const array) override;

    void getEfficientWidth(T* const width) const override;
    void getEfficientMin(T* const min) const override;
    void getEfficientMax(T* const max) const override;
    T getEfficientFraction() const override;
    T getPdf(T* const x) const override;

    /// Restarts the source.
    void restart() override;
    char const* getName() const override;
    RnRng<T>* getRng() const;

private:
    RnRng<T>* _uniRng;
};

template <class T, unsigned int N>
RnRng<T>* RnSeparableMultiRng<T, N>::getRng() const
{
    return _uniRng;
}

extern template class KR_BASE_API RnSeparableMultiRng<float, 3>;
extern template class KR_BASE_API RnSeparableMultiRng<double, 3>;

} // namespace Kr
