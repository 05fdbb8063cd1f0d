#pragma once

/// @file
/// Pairs with a source for each coordinate.
/// @code
/// Kr::RnVanDerCorputRng<float> base2(2), base3(3);
/// Kr::RnMexicanHatRng<float> tent(&base2);
/// Kr::RnAsymmetricalSeparableBiRng<float> filter(&tent, &base3);
/// float x, y;
/// filter.getSample(x, y);
/// @endcode

#include <base/rnBiRng.h>
#include <base/rnRng.h>

namespace Kr
{

template <class T>
class RnAsymmetricalSeparableBiRng : public RnBiRng<T>
{
public:
    /// Borrows the sources.
    /// @throws ExInternalError if one is null
    RnAsymmetricalSeparableBiRng(RnRng<T>* uniRng0, RnRng<T>* uniRng1);

    void getSample(T& x, T& y) override;
    void getSequence(unsigned int n, T* array0, T* array1) override;

    void getEfficientWidth(T& x, T& y) const override;
    void getEfficientMin(T& x, T& y) const override;
    void getEfficientMax(T& x, T& y) const override;
    T getEfficientFraction() const override;
    T getPdf(T x, T y) const override;

    /// Restarts both sources.
    void restart() override;
    char const* getName() const override;
    RnRng<T>* getRng0() const;
    RnRng<T>* getRng1() const;

private:
    RnRng<T>* _uniRng0;
    RnRng<T>* _uniRng1;
};

template <class T>
RnRng<T>* RnAsymmetricalSeparableBiRng<T>::getRng0() const
{
    return _uniRng0;
}

template <class T>
RnRng<T>* RnAsymmetricalSeparableBiRng<T>::getRng1() const
{
    return _uniRng1;
}

extern template class KR_BASE_API RnAsymmetricalSeparableBiRng<float>;
extern template class KR_BASE_API RnAsymmetricalSeparableBiRng<double>;

} // namespace Kr
