#include <base/internal/random/pairs.h>
#include <base/rnHaltonBiRng.h>

namespace Kr
{

template <class T>
RnHaltonBiRng<T>::RnHaltonBiRng(unsigned int p0, unsigned int p1)
{
    unsigned int const primes[] = {p0, p1};
    _rng.setPrimeNumbers(primes);
}

template <class T>
RnHaltonBiRng<T>::RnHaltonBiRng() = default;

template <class T>
void RnHaltonBiRng<T>::getSample(T& x, T& y)
{
    getPair(_rng, x, y);
}

template <class T>
void RnHaltonBiRng<T>::getSequence(unsigned int n, T* array0, T* array1)
{
    getPairs(_rng, n, array0, array1);
}

template <class T>
void RnHaltonBiRng<T>::getBlock(unsigned int index, unsigned int n, T* array0, T* array1) const
{
    T* array[] = {array0, array1};
    _rng.getBlock(index, n, array);
}

template <class T>
T RnHaltonBiRng<T>::getEfficientFraction() const
{
    return _rng.getEfficientFraction();
}

template <class T>
T RnHaltonBiRng<T>::getPdf(T x, T y) const
{
    return getPairPdf(_rng, x, y);
}

template <class T>
void RnHaltonBiRng<T>::restart()
{
    _rng.restart();
}

template <class T>
void RnHaltonBiRng<T>::restart(unsigned int index)
{
    _rng.restart(index);
}

template <class T>
void RnHaltonBiRng<T>::getPrimeNumbers(unsigned int& p0, unsigned int& p1) const
{
    unsigned int primes[2];
    _rng.getPrimeNumbers(primes);
    p0 = primes[0];
    p1 = primes[1];
}

template <class T>
char const* RnHaltonBiRng<T>::getName() const
{
    return _rng.getName();
}

template class RnHaltonBiRng<float>;
template class RnHaltonBiRng<double>;

} // namespace Kr
