#pragma once

/// @file
/// Samples with a triangular density, highest at the centre, from any uniform source: the tent
/// filter of a pixel.
/// @code
/// Kr::RnVanDerCorputRng<float> uniform;
/// Kr::RnMexicanHatRng<float> filter(&uniform, 0.f, 2.f);
/// const float offset = filter(); // between -1 and 1, most often near 0
/// @endcode
/// The inverse of the distribution is used, so evenly spread sources give evenly spread samples.
///
/// Pitfall: the argument called half-width is the full width of the support.

#include <base/rnRng.h>

namespace Kr
{

template <class T>
class RnMexicanHatRng : public RnRng<T>
{
public:
    /// Borrows the source. Samples are from `centre - halfwidth / 2` to `centre + halfwidth / 2`.
    /// @throws ExInternalError if the source is null, or half of `halfwidth` is not above 0 and
    ///     finite, or `centre` is not finite
    RnMexicanHatRng(RnRng<T>* rng, T centre, T halfwidth);
    /// With the centre 0 and the width 1.
    explicit RnMexicanHatRng(RnRng<T>* rng);

    T operator()() override;
    void getSample(T& x) override;
    void getSequence(unsigned int n, T* array) override;

    T getEfficientWidth() const override;
    T getEfficientMin() const override;
    T getEfficientMax() const override;
    T getEfficientFraction() const override;
    T getPdf(T x) const override;

    /// Restarts the source.
    void restart() override;
    char const* getName() const override;

private:
    T getWarped(T u) const;

    T _centre;
    T _width;
    T _halfwidth;
    T _inverseHalfwidth;
    RnRng<T>* _rng;
};

extern template class KR_BASE_API RnMexicanHatRng<float>;
extern template class KR_BASE_API RnMexicanHatRng<double>;

} // namespace Kr
