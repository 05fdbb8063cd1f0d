#include <base/assert.h>
#include <base/internal/random/niederreiterTable.h>
#include <base/rnNiederreiterMultiRng.h>

#include <typeinfo>

namespace Kr
{

namespace
{

/// The points that line up at the start of the sequence.
constexpr std::uint32_t skippedCount = 4096;

} // namespace

template <class T>
RnNiederreiterMultiRng<T>::RnNiederreiterMultiRng()
    : _index(0)
{
}

template <class T>
void RnNiederreiterMultiRng<T>::getSample(T* const sample)
{
    Niederreiter::getPoint(_index++ + skippedCount, sample);
}

template <class T>
void RnNiederreiterMultiRng<T>::getSequence(unsigned int n, T** const array)
{
    KR_ASSERT(array);
    if (typeid(*this) == typeid(RnNiederreiterMultiRng<T>))
    {
        getBlock(_index, n, array);
        _index += n;
        return;
    }
    for (unsigned int i = 0; i < n; ++i) // what a derived class makes of a sample counts
    {
        T sample[4];
        this->getSample(sample);
        for (unsigned int c = 0; c < 4; ++c)
            array[c][i] = sample[c];
    }
}

template <class T>
void RnNiederreiterMultiRng<T>::getBlock(unsigned int index, unsigned int n, T** const array) const
{
    KR_ASSERT(array);
    Niederreiter::fill(index + skippedCount, n, array);
}

template <class T>
void RnNiederreiterMultiRng<T>::restart()
{
    restart(0);
}

template <class T>
void RnNiederreiterMultiRng<T>::restart(unsigned int index)
{
    _index = index;
}

template <class T>
char const* RnNiederreiterMultiRng<T>::getName() const
{
    return "Niederreiter";
}

template class RnNiederreiterMultiRng<float>;
template class RnNiederreiterMultiRng<double>;

} // namespace Kr
