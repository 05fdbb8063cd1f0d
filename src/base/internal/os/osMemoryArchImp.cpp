#include <base/internal/os/osMemoryArchImp.h>

namespace Kr
{

OsMemoryArchImp::OsMemoryArchImp()
{
    OsCpuInfo::CacheInfo l1Data;
    OsCpuInfo::CacheInfo l1Instruction;
    OsCpuInfo::CacheInfo l2;
    int pageSize = 0;
    OsCpuInfo::getMemoryInfo(&l1Data, &l1Instruction, &l2, &pageSize);
    describe(l1Data, l2, pageSize);
}

OsMemoryArchImp::OsMemoryArchImp(const OsCpuInfo::CacheInfo& l1Data, const OsCpuInfo::CacheInfo& l2,
                                 int pageSize)
{
    describe(l1Data, l2, pageSize);
}

void OsMemoryArchImp::describe(const OsCpuInfo::CacheInfo& l1Data, const OsCpuInfo::CacheInfo& l2,
                               int pageSize)
{
    _memorySpan = 256 * 1024 * 1024;
    _l1DataSize = l1Data._size;
    _l2Size = l2._size;
    _l1DataWaySize = l1Data._size / l1Data._associativity;
    _l2WaySize = l2._size / l2._associativity;
    _l1DataLineSize = l1Data._lineSize;
    _l2LineSize = l2._lineSize;
    _pageSize = pageSize;
}

int OsMemoryArchImp::getMemorySpan() const
{
    return _memorySpan;
}

int OsMemoryArchImp::getL1DataSize() const
{
    return _l1DataSize;
}

int OsMemoryArchImp::getL2Size() const
{
    return _l2Size;
}

int OsMemoryArchImp::getL1DataWaySize() const
{
    return _l1DataWaySize;
}

int OsMemoryArchImp::getL2WaySize() const
{
    return _l2WaySize;
}

int OsMemoryArchImp::getL1DataLineSize() const
{
    return _l1DataLineSize;
}

int OsMemoryArchImp::getL2LineSize() const
{
    return _l2LineSize;
}

int OsMemoryArchImp::getPageSize() const
{
    return _pageSize;
}

int OsMemoryArchImp::getReserved() const
{
    return 8;
}

const OsMemoryArch& OsMemoryArch::getInstance()
{
    static const OsMemoryArch& instance = *new OsMemoryArchImp; // lives as long as the process
    return instance;
}

} // namespace Kr
