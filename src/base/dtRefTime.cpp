#include <base/dtRefTime.h>

#include <base/assert.h>
#include <base/dtRefClockEx.h>
#include <base/raise.h>

#include <cstring>
#include <limits>
#include <ostream>

namespace Kr
{

// Reference times

DtRefTime::DtRefTime(const DtTimeIndex& count, const Rational& rate)
    : _count(count)
    , _rate(rate)
{
}

void DtRefTime::dump(std::ostream& os) const
{
    os << "(" << _count << " @ " << _rate << ")";
}

std::ostream& operator<<(std::ostream& os, const DtRefTime& refTime)
{
    refTime.dump(os);
    return os;
}

// The factory

DtRefTimeFactory& DtRefTimeFactory::getInstance()
{
    static DtRefTimeFactory& instance = *new DtRefTimeFactory;
    return instance;
}

DtRefTimeFactory::DtRefTimeFactory()
    : _source(new DtRefClockSourceHwCounter)
{
}

DtRefTime DtRefTimeFactory::create() const
{
    return DtRefTime(_source->getCount(), _source->getRate());
}

DtRefTime DtRefTimeFactory::create(const DtTimeIndex& count, const char* sourceName) const
{
    if (sourceName == nullptr || std::strcmp(sourceName, _source->getName()) != 0)
        raise<DtRefClockEx::SourceMismatch>(KR_HERE);
    return DtRefTime(count, _source->getRate());
}

DtRefTime DtRefTimeFactory::create(const DtRefTime& refTime, const DtTimeIndex& offset,
                                   const Rational& offsetRate) const
{
    KR_ASSERT_AT(refTime.getRate() == _source->getRate(), 151);
    const Rational rate = _source->getRate();
    return DtRefTime(refTime.getCount() + offset.convert(offsetRate, rate, std::round_toward_zero),
                     rate);
}

} // namespace Kr
