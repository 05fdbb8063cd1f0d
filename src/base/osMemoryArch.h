#pragma once

/// @file
/// The memory architecture of the machine as the processor's old cache descriptors tell it:
/// @code
/// const Kr::OsMemoryArch& memory = Kr::OsMemoryArch::getInstance();
/// const int cache = memory.getL1DataSize() != 0 ? memory.getL1DataSize() : 32 * 1024;
/// const int rows = cache / (4 * 1920);
/// @endcode
/// All sizes are in bytes. Pitfall: a size is 0 when the processor does not report it, which is
/// the rule on processors of this century: never divide by one. `OsProcessor` reads the caches of
/// those; use it for new code.

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
