#include <base/dtRefClockSource.h>

#include <base/hwCounter.h>

namespace Kr
{

DtRefClockSource::DtRefClockSource(const char* name, const Rational& rate)
    : _name(name)
    , _rate(rate)
{
}

DtRefClockSource::~DtRefClockSource() = default;

DtRefClockSourceHwCounter::DtRefClockSourceHwCounter()
    : DtRefClockSource("HwCounter",
                       Rational(HwCounter::getRateNumerator(), HwCounter::getRateDenominator()))
    , _origin(HwCounter::timeStamp())
{
}

DtTimeIndex DtRefClockSourceHwCounter::getCount() const
{
    return static_cast<long long>(HwCounter::timeStamp() - _origin);
}

} // namespace Kr
