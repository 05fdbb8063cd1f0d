#include <base/dtTimeIndexInterval.h>

namespace Kr
{

template class KR_BASE_API Interval<DtTimeIndex>;
template std::ostream& operator<<(std::ostream&, const Interval<DtTimeIndex>&);

} // namespace Kr
