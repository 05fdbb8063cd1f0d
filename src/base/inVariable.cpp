#include <base/inVariable.h>

namespace Kr
{

template class InVariable<bool>;
template class InVariable<std::int32_t>;
template class InVariable<std::uint32_t>;
template class InVariable<std::int64_t>;
template class InVariable<std::uint64_t>;
template class InVariable<double>;
template class InVariable<std::string>;

} // namespace Kr
