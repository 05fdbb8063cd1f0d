#include <base/interval.imp>

namespace Kr
{

template class Interval<float>;
template class Interval<double>;
template std::ostream& operator<<(std::ostream&, const Interval<float>&);
template std::ostream& operator<<(std::ostream&, const Interval<double>&);

} // namespace Kr
