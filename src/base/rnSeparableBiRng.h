#pragma once

/// @file
/// Pairs whose coordinates are successive samples of one source.
/// @code
/// Kr::RnLecuyerUniformRng<float> uniform;
/// Kr::RnGaussianRng<float> gaussian(&uniform);
/// Kr::RnSeparableBiRng<float> blur(&gaussian);
/// float x, y;
/// blur.getSample(x, y);
/// @endcode
/// Pitfall: successive samples of a low-discrepancy sequence belong together, so pairs of them fill
/// the plane badly; take `RnHaltonBiRng`, or two sequences in `RnAsymmetricalSeparableBiRng`.

#include <base/rnBiRng.h>
#include <base/rnRng.h>

namespace Kr
{

template <class T>
class RnSeparableBiRng : public RnBiRng<T>
{
public:
    /// Borrows the source.
    /// @throws ExInternalError if it is null
    explicit RnSeparableBiRng(RnRng<T>* uniRng);

    void getSample(T& x, T& y) override;
    void getSequence(unsigned int n, T* array0, T* array1) override;

    void getEfficientWidth(T& x, T& y) const override;
    void getEfficientMin(T& x, T& y) const override;
    void getEfficientMax(T& x, T& y) const override;
    T getEfficientFraction() const override;
    T getPdf(T x, T y) const override;

    /// Restarts the source.
    void restart() override;
    char const* getName() const override;
    RnRng<T>* getRng() const;

private:
    RnRng<T>* _uniRng;
};

template <class T>
RnRng<T>* RnSeparableBiRng<T>::getRng() const
{
    return _uniRng;
}

extern template class KR_BASE_API RnSeparableBiRng<float>;
extern template class KR_BASE_API RnSeparableBiRng<double>;

} // namespace Kr
