#include <base/internal/clocks/hwCounterEng.h>

#include <base/assert.h>
#include <base/internal/clocks/hwCounterIA32.h>
#include <base/osCpuInfo.h>

namespace Kr
{

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
    KR_ASSERT(frequency > 0);
    int shift = 0;
    for (; frequency >= 1ULL << 31; frequency >>= 1)
        ++shift;
    return ObjPtrRet<HwCounterEng>(new HwCounterIA32(static_cast<int>(frequency), 1, shift));
}

} // namespace Kr
