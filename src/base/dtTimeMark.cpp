#include <base/dtTimeMark.h>

#include <base/assert.h>

#include <limits>
#include <ostream>

namespace Kr
{

DtTimeMark::DtTimeMark(const DtTime& streamTime, const DtRefTime& refTime)
    : _streamTime(streamTime)
    , _refTime(refTime)
{
}

DtTimeMark DtTimeMark::evalTime(const DtRefTime& refTime) const
{
    KR_ASSERT_AT(refTime.getRate() == _refTime.getRate(), 62);
    const Rational streamRate = _streamTime.getRate();
    const DtTimeIndex delta = refTime.getCount() - _refTime.getCount();
    const DtTimeIndex converted =
        delta.convert(_refTime.getRate(), streamRate, std::round_toward_zero);
    return DtTimeMark(DtTime(_streamTime.getCount() + converted, streamRate), refTime);
}

DtTimeMark DtTimeMark::evalTime(const DtTime& streamTime) const
{
    const Rational streamRate = _streamTime.getRate();
    const DtTimeIndex delta =
        streamTime.convertRate(streamRate).getCount() - _streamTime.getCount();
    return DtTimeMark(streamTime,
                      DtRefTimeFactory::getInstance().create(_refTime, delta, streamRate));
}

void DtTimeMark::dump(std::ostream& os) const
{
    os << "(" << _streamTime << " " << _refTime << ")";
}

std::ostream& operator<<(std::ostream& os, const DtTimeMark& mark)
{
    mark.dump(os);
    return os;
}

} // namespace Kr
