#include <base/osCpuInfo.h>

#include <cassert>

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
    assert(MIPS <= _type && _type <= UNKNOWN);
    return "UNKNOWN";
}

unsigned long long OsCpuInfo::getHwCounterFrequency()
{
    assert(_hwCounterFrequency != 0);
    if (_hwCounterFrequency == 0) // without assertions: 0 would be divided by
        initialize();
    return _hwCounterFrequency;
}

} // namespace Kr
