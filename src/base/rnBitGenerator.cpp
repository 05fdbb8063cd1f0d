#include <base/assert.h>
#include <base/rnBitGenerator.h>

namespace Kr
{

namespace
{

template <class T>
std::uint32_t getBits16(T sample)
{
    const T scaled = sample * 65536;
    if (!(scaled > 0)) // a NaN too
        return 0;
    return scaled < 65535 ? static_cast<std::uint32_t>(scaled) : 65535U;
}

} // namespace

template <class T>
RnBitGenerator<T>::RnBitGenerator(RnRng<T>* uniRng)
    : _uniRng(uniRng)
{
    KR_ASSERT(_uniRng);
}

template <class T>
typename RnBitGenerator<T>::result_type RnBitGenerator<T>::operator()()
{
    const std::uint32_t high = getBits16((*_uniRng)());
    return high << 16 | getBits16((*_uniRng)());
}

template class RnBitGenerator<float>;
template class RnBitGenerator<double>;

} // namespace Kr
