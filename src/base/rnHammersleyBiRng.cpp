#include <base/rnHammersleyBiRng.h>

#include <base/rnPairedBiRng.imp>

namespace Kr
{

template <class T>
RnHammersleyBiRng<T>::RnHammersleyBiRng(unsigned int length)
    : RnPairedBiRng<T, RnHammersleyMultiRng<T, 2>>(RnHammersleyMultiRng<T, 2>(length))
{
}

template <class T>
unsigned int RnHammersleyBiRng<T>::getLength() const
{
    return this->_rng.getLength();
}

template class RnPairedBiRng<float, RnHammersleyMultiRng<float, 2>>;
template class RnPairedBiRng<double, RnHammersleyMultiRng<double, 2>>;
template class RnHammersleyBiRng<float>;
template class RnHammersleyBiRng<double>;

} // namespace Kr
