#pragma once

/// @file
/// Internal to the library: the one implementation of `OsMemoryArch`, from the processor's cache
/// descriptors.

#include <base/osCpuInfo.h>
#include <base/osMemoryArch.h>

#include <cstdint>

namespace Kr
{

class OsMemoryArchImp final : public OsMemoryArch
{
public:
    /// Describes this machine.
    OsMemoryArchImp();

    /// Describes a machine with these caches; their associativities are above 0.
    OsMemoryArchImp(const OsCpuInfo::CacheInfo& l1Data, const OsCpuInfo::CacheInfo& l2,
                    int pageSize);

    int getMemorySpan() const override;
    int getL1DataSize() const override;
    int getL2Size() const override;
    int getL1DataWaySize() const override;
    int getL2WaySize() const override;
    int getL1DataLineSize() const override;
    int getL2LineSize() const override;
    int getPageSize() const override;
    int getReserved() const override;

private:
    void describe(const OsCpuInfo::CacheInfo& l1Data, const OsCpuInfo::CacheInfo& l2, int pageSize);

    std::int32_t _memorySpan;
    std::int32_t _l1DataSize;
    std::int32_t _l2Size;
    std::int32_t _l1DataWaySize;
    std::int32_t _l2WaySize;
    std::int32_t _l1DataLineSize;
    std::int32_t _l2LineSize;
    std::int32_t _pageSize;
};

} // namespace Kr
