#include <base/inVariable.h>

namespace Kr
{

template class InVariable<bool>;
template class InVariable<signed char>;
template class InVariable<unsigned char>;
template class InVariable<short>;
template class InVariable<unsigned short>;
template class InVariable<int>;
template class InVariable<unsigned int>;
template class InVariable<long>;
template class InVariable<unsigned long>;
template class InVariable<long long>;
template class InVariable<unsigned long long>;
template class InVariable<float>;
template class InVariable<double>;
template class InVariable<std::string>;

} // namespace Kr
