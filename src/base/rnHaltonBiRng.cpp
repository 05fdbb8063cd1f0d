#include <base/rnHaltonBiRng.h>

#include <base/rnPairedBiRng.imp>

namespace Kr
{

template <class T>
RnHaltonBiRng<T>::RnHaltonBiRng(unsigned int p0, unsigned int p1)
    : RnHaltonBiRng()
{
    unsigned int const primes[] = {p0, p1};
    this->_rng.setPrimeNumbers(primes);
}

template <class T>
RnHaltonBiRng<T>::RnHaltonBiRng()
    : RnPairedBiRng<T, RnHaltonMultiRng<T, 2>>(RnHaltonMultiRng<T, 2>())
{
}

template <class T>
void RnHaltonBiRng<T>::getPrimeNumbers(unsigned int& p0, unsigned int& p1) const
{
    unsigned int primes[2];
    this->_rng.getPrimeNumbers(primes);
    p0 = primes[0];
    p1 = primes[1];
}

template class RnPairedBiRng<float, RnHaltonMultiRng<float, 2>>;
template class RnPairedBiRng<double, RnHaltonMultiRng<double, 2>>;
template class RnHaltonBiRng<float>;
template class RnHaltonBiRng<double>;

} // namespace Kr
