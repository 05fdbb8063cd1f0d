#pragma once

/// @file
/// Intervals of tick counts, both at one rate.
/// @code
/// const Kr::DtTimeIndexInterval scene(100, 250), shot(240, 300);
/// const Kr::DtTimeIndexInterval shared = scene.getIntersection(shot); // [240, 250]
/// @endcode
/// The ends belong to the interval: [100, 250] holds 151 ticks and is 150 wide.

#include <base/dtTimeIndex.h>
#include <base/interval.h>

namespace Kr
{

extern template KR_BASE_API std::ostream& operator<<(std::ostream&, const Interval<DtTimeIndex>&);

using DtTimeIndexInterval = Interval<DtTimeIndex>;

} // namespace Kr
