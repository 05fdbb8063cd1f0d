#include <base/internal/clocks/hwCounterIA32.h>

#include <base/assert.h>
#include <base/osCpuInfo.h>

#include <ostream>

namespace Kr
{

HwCounterIA32::HwCounterIA32(int rateNumerator, int rateDenominator, int shift)
    : _rateNumerator(rateNumerator)
    , _rateDenominator(rateDenominator)
    , _shift(shift)
    , _cycle(static_cast<double>(rateDenominator) / rateNumerator)
{
}

unsigned long long HwCounterIA32::timeStamp() const
{
    return OsCpuInfo::getHwCounterValue() >> _shift;
}

double HwCounterIA32::seconds(unsigned long long start, unsigned long long end) const
{
    return static_cast<double>(static_cast<std::int64_t>(end - start)) * _cycle;
}

double HwCounterIA32::seconds() const
{
    return static_cast<double>(static_cast<std::int64_t>(timeStamp())) * _cycle;
}

double HwCounterIA32::resolution() const
{
    return _cycle;
}

int HwCounterIA32::getRateNumerator() const
{
    return _rateNumerator;
}

int HwCounterIA32::getRateDenominator() const
{
    return _rateDenominator;
}

void HwCounterIA32::dump(std::ostream& os) const
{
    os << "HwCounterIA32:" << std::endl;
    os << "Rate         = " << _rateNumerator << "/" << _rateDenominator << std::endl;
    os << "Cycle        = " << _cycle << " seconds" << std::endl;
}

// The factory of the interface, which this implements

ObjPtrRet<HwCounterEng> HwCounterEng::create()
{
    // A static timer may want the counter before the package that identifies the machine starts.
    if (!OsCpuInfo::isInitialized())
        OsCpuInfo::initialize();
    return create(OsCpuInfo::getHwCounterFrequency());
}

ObjPtrRet<HwCounterEng> HwCounterEng::create(unsigned long long frequency)
{
    KR_ASSERT(frequency > 0);
    int shift = 0;
    for (; frequency >= 1ULL << 31; frequency >>= 1)
        ++shift;
    return ObjPtrRet<HwCounterEng>(new HwCounterIA32(static_cast<int>(frequency), 1, shift));
}

} // namespace Kr
