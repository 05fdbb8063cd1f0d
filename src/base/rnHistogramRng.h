#pragma once

/// @file
/// Samples that are distributed like a histogram, in one and two dimensions: a light of an
/// environment map, a wavelength of a spectrum.
/// @code
/// const float spectrum[] = {1.f, 4.f, 0.f, 2.f};
/// const Kr::RnHistogram<float> lamp(400.f, 700.f, 4, spectrum);
/// Kr::RnLecuyerUniformRng<float> uniform;
/// Kr::RnHistogramRng<float> wavelengths(&uniform, lamp); // any number of bins in the same time
/// const float density = wavelengths.getPdf(wavelengths());
///
/// Kr::RnVanDerCorputRng<float> points;
/// Kr::RnHistogramRng<float> even(&points, lamp, Kr::RnHistogramRng<float>::Inverse);
/// @endcode
/// There are two ways. By alias a sample takes the same time whatever the number of bins, but two
/// samples of the source (three above 4096 bins, one more in two dimensions), whose order is lost.
/// The inverse takes one (a pair in two dimensions), and the more of it the more of the histogram
/// lies below: evenly spread sources give evenly spread samples.
///
/// The histogram is copied when the generator is made. A bin without weight never comes out.
///
/// Pitfall: a low-discrepancy source of single values belongs with the inverse only.

#include <base/rnHistogram.h>

#include <memory>

namespace Kr
{

template <class T>
class RnHistogramRng : public RnRng<T>
{
public:
    enum Method
    {
        Alias,
        Inverse
    };

    /// Borrows the source.
    /// @throws ExInternalError if the source is null
    /// @throws RnEx::BadHistogram if the histogram has no weight
    RnHistogramRng(RnRng<T>* uniRng, const RnHistogram<T>& histogram, Method method = Alias);
    RnHistogramRng(const RnHistogramRng&) = delete;
    RnHistogramRng& operator=(const RnHistogramRng&) = delete;
    ~RnHistogramRng() override;

    T operator()() override;
    void getSample(T& x) override;
    void getSequence(unsigned int n, T* array) override;

    /// The value below which the fraction `u` of the distribution lies; `u` is clamped to [0, 1].
    T getInverse(T u) const;
    /// The fraction of the distribution below `x`, from 0 to 1.
    T getCumulative(T x) const;

    T getEfficientWidth() const override;
    T getEfficientMin() const override;
    T getEfficientMax() const override;
    T getEfficientFraction() const override;
    T getPdf(T x) const override;

    /// Restarts the source.
    void restart() override;
    char const* getName() const override;
    RnRng<T>* getRng() const;

private:
    struct Tables;
    T getByAlias(const T* uniform) const;

    RnRng<T>* _uniRng;
    Method _method;
    std::unique_ptr<const Tables> _tables;
};

template <class T>
RnRng<T>* RnHistogramRng<T>::getRng() const
{
    return _uniRng;
}

template <class T>
class RnHistogramBiRng : public RnBiRng<T>
{
public:
    /// By alias. Borrows the source.
    /// @throws ExInternalError if the source is null
    /// @throws RnEx::BadHistogram if the histogram has no weight
    RnHistogramBiRng(RnRng<T>* uniRng, const RnBiHistogram<T>& histogram);
    /// By the inverse, of pairs in the unit square. Borrows the source; throws the same.
    RnHistogramBiRng(RnBiRng<T>* uniRng, const RnBiHistogram<T>& histogram);
    RnHistogramBiRng(const RnHistogramBiRng&) = delete;
    RnHistogramBiRng& operator=(const RnHistogramBiRng&) = delete;
    ~RnHistogramBiRng() override;

    void getSample(T& x, T& y) override;
    void getSequence(unsigned int n, T* array0, T* array1) override;

    /// The row by `v`, then the column within the row by `u`, both clamped to [0, 1]: y is the
    /// value below which the fraction `v` of the distribution lies, x that below which the fraction
    /// `u` of what is in the row of y lies.
    void getInverse(T u, T v, T& x, T& y) const;

    void getEfficientWidth(T& x, T& y) const override;
    void getEfficientMin(T& x, T& y) const override;
    void getEfficientMax(T& x, T& y) const override;
    T getEfficientFraction() const override;
    T getPdf(T x, T y) const override;

    /// Restarts the source.
    void restart() override;
    char const* getName() const override;

private:
    struct Tables;
    void getByAlias(const T* uniform, T& x, T& y) const;

    RnRng<T>* _uniRng;
    RnBiRng<T>* _uniBiRng; ///< one of the two is null
    std::unique_ptr<const Tables> _tables;
};

extern template class KR_BASE_API RnHistogramRng<float>;
extern template class KR_BASE_API RnHistogramRng<double>;
extern template class KR_BASE_API RnHistogramBiRng<float>;
extern template class KR_BASE_API RnHistogramBiRng<double>;

} // namespace Kr
