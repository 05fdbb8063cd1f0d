#pragma once

/// @file
/// A stream time and the reference time at which it happens: from either, the other of any later
/// moment follows.
/// @code
/// // frame 0 of a stream at 25 frames per second is shown now
/// const Kr::DtTimeMark first(Kr::DtTime(0, 25, 1), Kr::DtRefTimeFactory::getInstance().create());
/// // which frame is to be shown a moment later?
/// const Kr::DtTime frame =
///     first.evalTime(Kr::DtRefTimeFactory::getInstance().create()).getStreamTime();
/// // when is frame 100 to be shown?
/// const Kr::DtRefTime when = first.evalTime(Kr::DtTime(100, 25, 1)).getRefTime();
/// @endcode
/// Conversions truncate toward the mark, so a frame stays the current one until the next is due.
/// A value type.

#include <base/dtRefTime.h>
#include <base/dtTime.h>
#include <base/krBaseApi.h>

#include <iosfwd>

namespace Kr
{

class KR_BASE_API DtTimeMark
{
public:
    /// Both times are their defaults, 0 at 1/1.
    DtTimeMark() = default;
    DtTimeMark(const DtTime& streamTime, const DtRefTime& refTime);

    DtTime getStreamTime() const { return _streamTime; }
    DtRefTime getRefTime() const { return _refTime; }

    /// The mark at that reference time, its stream time at this mark's stream rate. The reference
    /// time is at this mark's reference rate (a failed assertion).
    DtTimeMark evalTime(const DtRefTime& refTime) const;

    /// The mark at that stream time. This mark's reference time is at the reference clock's rate (a
    /// failed assertion).
    DtTimeMark evalTime(const DtTime& streamTime) const;

    /// Writes "((5 @ (25/1=25)) (200 @ (1000/1=1000)))": stream time and reference time, no line
    /// end.
    void dump(std::ostream& os) const;

private:
    DtTime _streamTime;
    DtRefTime _refTime;
};

/// As `DtTimeMark::dump`.
KR_BASE_API std::ostream& operator<<(std::ostream& os, const DtTimeMark& mark);

} // namespace Kr
