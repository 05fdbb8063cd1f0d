#include <base/osCpuInfo.h>

#include <base/internal/errors/invariant.h>

namespace Kr
{

OsCpuInfo::Type OsCpuInfo::_type = OsCpuInfo::UNKNOWN;
bool OsCpuInfo::_hasMMX = false;
bool OsCpuInfo::_hasSSE = false;
std::uint64_t OsCpuInfo::_hwCounterFrequency = 0;

void OsCpuInfo::finalize()
{
}

const char* OsCpuInfo::getTypeName()
{
    switch (_type)
    {
    case MIPS:
        return "MIPS";
    case IA32:
        return "IA32";
    case IA64:
        return "IA64";
    case UNKNOWN:
        return "UNKNOWN";
    }
    KR_INVARIANT_TEXT(false, "MIPS <= _type && _type <= UNKNOWN", 59);
    return "UNKNOWN";
}

unsigned long long OsCpuInfo::getHwCounterFrequency()
{
    KR_INVARIANT_TEXT(_hwCounterFrequency != 0, "_hwCounterFrequency != 0", 87);
    if (_hwCounterFrequency == 0) // where the invariant is compiled out: 0 would be divided by
        initialize();
    return _hwCounterFrequency;
}

} // namespace Kr
