#include <base/interval.h>

namespace Kr
{

template class KR_BASE_API Interval<float>;
template class KR_BASE_API Interval<double>;
template std::ostream& operator<<(std::ostream&, const Interval<float>&);
template std::ostream& operator<<(std::ostream&, const Interval<double>&);

} // namespace Kr
