#include <base/assert.h>
#include <base/rnStdUniformRng.h>

#include <algorithm>
#include <cstdlib>

namespace Kr
{

template <class T>
RnStdUniformRng<T>::RnStdUniformRng(unsigned int seed)
    : _seed(seed)
{
    std::srand(seed);
}

template <class T>
RnStdUniformRng<T>::RnStdUniformRng()
    : _seed(1)
{
}

template <class T>
T RnStdUniformRng<T>::eval()
{
    return static_cast<T>(std::rand()) / static_cast<T>(RAND_MAX);
}

template <class T>
T RnStdUniformRng<T>::operator()()
{
    return eval();
}

template <class T>
void RnStdUniformRng<T>::getSequence(unsigned int n, T* array)
{
    KR_ASSERT(array != nullptr || n == 0);
    std::generate_n(array, n, [this] { return eval(); });
}

template <class T>
void RnStdUniformRng<T>::restart()
{
    std::srand(_seed);
}

template <class T>
char const* RnStdUniformRng<T>::getName() const
{
    return "Std OS-specific generator";
}

template class RnStdUniformRng<float>;
template class RnStdUniformRng<double>;

} // namespace Kr
