#include <base/assert.h>
#include <base/rnStdEngineRng.h>

namespace Kr
{

template <class T>
char const* RnStdEngineRngBase<T>::getName() const
{
    return "Standard engine";
}

template <class T>
T RnStdEngineRngBase<T>::getFraction(std::uint64_t bits)
{
    constexpr std::uint64_t scale = std::uint64_t(1) << std::numeric_limits<T>::digits;
    return static_cast<T>(bits & (scale - 1)) / static_cast<T>(scale);
}

template <class T>
void RnStdEngineRngBase<T>::checkArray(unsigned int n, const T* array)
{
    KR_ASSERT(array != nullptr || n == 0);
}

template class RnStdEngineRngBase<float>;
template class RnStdEngineRngBase<double>;

} // namespace Kr
