#pragma once

/// @file
/// What the generators on the unit interval, square and cube have in common: their bounds and their
/// density.
/// @code
/// Kr::RnLecuyerUniformRng<double> uniform;
/// const double angle = uniform(-0.5, 0.5); // between the two
/// const double offset = uniform(3.);       // between 0 and 3
/// @endcode
/// Here `T` is `float` or `double`. These are bases for the library's own generators; take
/// `RnRng`, `RnBiRng` or `RnMultiRng` where any generator will do.

#include <base/rnBiRng.h>
#include <base/rnMultiRng.h>
#include <base/rnRng.h>

namespace Kr
{

/// Generators on [0, 1) with the density 1.
template <class T>
class RnUnitRng : public RnRng<T>
{
public:
    using RnRng<T>::operator();

    /// a + u * (b - a), u being the next sample.
    T operator()(T a, T b);
    /// u * w, u being the next sample.
    T operator()(T w);

    void getSample(T& x) override;
    T getEfficientWidth() const override;
    T getEfficientMin() const override;
    T getEfficientMax() const override;
    T getEfficientFraction() const override;
    /// 1 when 0 <= x < 1, and 0 otherwise.
    T getPdf(T x) const override;
};

/// Generators on the square [0, 1) x [0, 1) with the density 1.
template <class T>
class RnUnitBiRng : public RnBiRng<T>
{
public:
    void getEfficientWidth(T& x, T& y) const override;
    void getEfficientMin(T& x, T& y) const override;
    void getEfficientMax(T& x, T& y) const override;
};

/// Generators on the N-dimensional cube of side 1 with the density 1.
template <class T, unsigned int N>
class RnUnitMultiRng : public RnMultiRng<T, N>
{
public:
    void getEfficientWidth(T* const width) const override;
    void getEfficientMin(T* const min) const override;
    void getEfficientMax(T* const max) const override;
    T getEfficientFraction() const override;
    /// 1 when every coordinate is in [0, 1), and 0 otherwise.
    T getPdf(T* const x) const override;
};

extern template class KR_BASE_API RnUnitRng<float>;
extern template class KR_BASE_API RnUnitRng<double>;
extern template class KR_BASE_API RnUnitBiRng<float>;
extern template class KR_BASE_API RnUnitBiRng<double>;
extern template class KR_BASE_API RnUnitMultiRng<float, 2>;
extern template class KR_BASE_API RnUnitMultiRng<float, 3>;
extern template class KR_BASE_API RnUnitMultiRng<float, 4>;
extern template class KR_BASE_API RnUnitMultiRng<double, 2>;
extern template class KR_BASE_API RnUnitMultiRng<double, 3>;
extern template class KR_BASE_API RnUnitMultiRng<double, 4>;

} // namespace Kr
