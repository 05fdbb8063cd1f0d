#include <base/rnUnitRng.h>

#include <algorithm>

namespace Kr
{

template <class T>
T RnUnitRng<T>::operator()(T a, T b)
{
    return a + (*this)() * (b - a);
}

template <class T>
T RnUnitRng<T>::operator()(T w)
{
    return (*this)() * w;
}

template <class T>
void RnUnitRng<T>::getSample(T& x)
{
    x = (*this)();
}

template <class T>
T RnUnitRng<T>::getEfficientWidth() const
{
    return 1;
}

template <class T>
T RnUnitRng<T>::getEfficientMin() const
{
    return 0;
}

template <class T>
T RnUnitRng<T>::getEfficientMax() const
{
    return 1;
}

template <class T>
T RnUnitRng<T>::getEfficientFraction() const
{
    return 1;
}

template <class T>
T RnUnitRng<T>::getPdf(T x) const
{
    return 0 <= x && x < 1 ? T(1) : T(0);
}

// --- pairs
// ----------------------------------------------------------------------------------------

template <class T>
void RnUnitBiRng<T>::getEfficientWidth(T& x, T& y) const
{
    x = y = 1;
}

template <class T>
void RnUnitBiRng<T>::getEfficientMin(T& x, T& y) const
{
    x = y = 0;
}

template <class T>
void RnUnitBiRng<T>::getEfficientMax(T& x, T& y) const
{
    x = y = 1;
}

// --- vectors
// --------------------------------------------------------------------------------------

template <class T, unsigned int N>
void RnUnitMultiRng<T, N>::getEfficientWidth(T* const width) const
{
    std::fill_n(width, N, T(1));
}

template <class T, unsigned int N>
void RnUnitMultiRng<T, N>::getEfficientMin(T* const min) const
{
    std::fill_n(min, N, T(0));
}

template <class T, unsigned int N>
void RnUnitMultiRng<T, N>::getEfficientMax(T* const max) const
{
    std::fill_n(max, N, T(1));
}

template <class T, unsigned int N>
T RnUnitMultiRng<T, N>::getEfficientFraction() const
{
    return 1;
}

template <class T, unsigned int N>
T RnUnitMultiRng<T, N>::getPdf(T* const x) const
{
    const bool isInside = std::all_of(x, x + N, [](T value) { return 0 <= value && value < 1; });
    return isInside ? T(1) : T(0);
}

template class RnRng<float>;
template class RnRng<double>;
template class RnBiRng<float>;
template class RnBiRng<double>;
template class RnMultiRng<float, 2>;
template class RnMultiRng<float, 3>;
template class RnMultiRng<float, 4>;
template class RnMultiRng<double, 2>;
template class RnMultiRng<double, 3>;
template class RnMultiRng<double, 4>;
template class RnUnitRng<float>;
template class RnUnitRng<double>;
template class RnUnitBiRng<float>;
template class RnUnitBiRng<double>;
template class RnUnitMultiRng<float, 2>;
template class RnUnitMultiRng<float, 3>;
template class RnUnitMultiRng<float, 4>;
template class RnUnitMultiRng<double, 2>;
template class RnUnitMultiRng<double, 3>;
template class RnUnitMultiRng<double, 4>;

} // namespace Kr
