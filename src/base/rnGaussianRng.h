#pragma once

/// @file
/// Normally distributed samples, from any uniform source.
/// @code
/// Kr::RnLecuyerUniformRng<double> uniform;
/// Kr::RnGaussianRng<double> noise(&uniform, 3., 2.); // mean and standard deviation
/// const double x = noise();
/// assert(noise.getPdf(3.) > noise.getPdf(x - 1.) || x < 6.);
/// @endcode
/// Pitfalls:
/// - the polar method makes two samples of two (or, after rejections, more) of the source's, and
///   keeps the second. `restart` restarts the source, but does not drop that second sample;
/// - the interval that is reported is the mean plus and minus two deviations, while the fraction is
///   that of plus and minus four; neither limits the samples;
/// - low-discrepancy sources lose their evenness, and one that never gives a point within the unit
///   circle is refused (`RnEx::UnusableSource`). Should both samples of a pair be exactly 0.5, the
///   result is NaN.
///
/// G. Marsaglia, T. A. Bray: A Convenient Method for Generating Normal Variables. SIAM Review 6,
/// 1964.

#include <base/rnRng.h>

namespace Kr
{

template <class T>
class RnGaussianRng : public RnRng<T>
{
public:
    /// Borrows the source.
    /// @throws ExInternalError if the source is null, or `sigma` is not above 0 and finite, or
    ///     `mean` is not finite
    RnGaussianRng(RnRng<T>* uniRng, T mean, T sigma);
    /// With the mean 0 and the standard deviation 1.
    explicit RnGaussianRng(RnRng<T>* uniRng);

    T operator()() override;
    void getSample(T& x) override;
    /// Takes from the source, a block at a time, just as many samples as single calls would.
    void getSequence(unsigned int n, T* array) override;

    /// Four standard deviations.
    T getEfficientWidth() const override;
    T getEfficientMin() const override;
    T getEfficientMax() const override;
    /// 0.99993666
    T getEfficientFraction() const override;
    T getPdf(T x) const override;

    /// Restarts the source.
    void restart() override;
    char const* getName() const override;

private:
    T eval();
    T makePair();
    void makePairs(unsigned int n, T* array);

    T _mean;
    T _sigma;
    T _sigma2;
    T _densityFactor; ///< 1 / (sigma * sqrt(2 pi))
    bool _isCached;
    T _cached;
    RnRng<T>* _uniRng;
};

extern template class KR_BASE_API RnGaussianRng<float>;
extern template class KR_BASE_API RnGaussianRng<double>;

} // namespace Kr
