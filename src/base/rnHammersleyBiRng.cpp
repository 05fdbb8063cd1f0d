#include <base/internal/random/pairs.h>
#include <base/rnHammersleyBiRng.h>

namespace Kr
{

template <class T>
RnHammersleyBiRng<T>::RnHammersleyBiRng(unsigned int length)
    : _rng(length)
{
}

template <class T>
void RnHammersleyBiRng<T>::getSample(T& x, T& y)
{
    getPair(_rng, x, y);
}

template <class T>
void RnHammersleyBiRng<T>::getSequence(unsigned int n, T* array0, T* array1)
{
    getPairs(_rng, n, array0, array1);
}

template <class T>
T RnHammersleyBiRng<T>::getEfficientFraction() const
{
    return _rng.getEfficientFraction();
}

template <class T>
T RnHammersleyBiRng<T>::getPdf(T x, T y) const
{
    return getPairPdf(_rng, x, y);
}

template <class T>
void RnHammersleyBiRng<T>::restart()
{
    _rng.restart();
}

template <class T>
char const* RnHammersleyBiRng<T>::getName() const
{
    return _rng.getName();
}

template class RnHammersleyBiRng<float>;
template class RnHammersleyBiRng<double>;

} // namespace Kr
