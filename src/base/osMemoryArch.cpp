#include <base/osMemoryArch.h>

#include <base/internal/os/osMemoryArchImp.h>

namespace Kr
{

const OsMemoryArch& OsMemoryArch::getInstance()
{
    static const OsMemoryArch& instance = *new OsMemoryArchImp; // lives as long as the process
    return instance;
}

} // namespace Kr
