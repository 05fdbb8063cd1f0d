#pragma once

/// @file
/// The memory architecture of the machine, for code that blocks its loops by the caches:
/// @code
/// const Kr::OsMemoryArch& memory = Kr::OsMemoryArch::getInstance();
/// const int bytesPerRow = 4 * 1920;
/// const int rows = memory.getL1DataSize() / bytesPerRow; // 0 if the size is not reported
/// @endcode
/// All sizes are in bytes. Pitfall: a size is 0 when the processor does not report it, which is
/// the rule on processors that do not list their caches by the old descriptors.

#include <base/krBaseApi.h>

namespace Kr
{

class KR_BASE_API OsMemoryArch
{
public:
    /// The machine's description, made at the first call; any thread may use it.
    static const OsMemoryArch& getInstance();

    /// 256 MiB, whatever the machine.
    virtual int getMemorySpan() const = 0;
    virtual int getL1DataSize() const = 0;
    virtual int getL2Size() const = 0;
    /// A cache's size over its associativity.
    virtual int getL1DataWaySize() const = 0;
    virtual int getL2WaySize() const = 0;
    virtual int getL1DataLineSize() const = 0;
    virtual int getL2LineSize() const = 0;
    virtual int getPageSize() const = 0;
    /// 8, whatever the machine.
    virtual int getReserved() const = 0;

protected:
    ~OsMemoryArch() = default;
};

} // namespace Kr
