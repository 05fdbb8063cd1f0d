#include <base/hwCounterEng.h>

#include <base/hwCounterIA32.h>
#include <base/osCpuInfo.h>

namespace Kr
{

HwCounterEng::HwCounterEng() = default;
HwCounterEng::HwCounterEng(const HwCounterEng&) = default;
HwCounterEng& HwCounterEng::operator=(const HwCounterEng&) = default;
HwCounterEng::~HwCounterEng() = default;

ObjPtrRet<HwCounterEng> HwCounterEng::create()
{
    // A static timer may want the counter before the package that identifies the machine starts.
    if (!OsCpuInfo::isInitialized())
        OsCpuInfo::initialize();
    return create(OsCpuInfo::getHwCounterFrequency());
}

ObjPtrRet<HwCounterEng> HwCounterEng::create(unsigned long long frequency)
{
    int shift = 0;
    for (; frequency >= 1ULL << 31; frequency >>= 1)
        ++shift;
    return ObjPtrRet<HwCounterEng>(new HwCounterIA32(static_cast<int>(frequency), 1, shift));
}

} // namespace Kr
