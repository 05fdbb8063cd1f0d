#include <base/osMemoryArchEx.h>

namespace Kr
{

OsMemoryArchEx::OsMemoryArchEx(const char* file, int line)
    : ExBase(file, line)
{
}

OsMemoryArchEx::ExUnknownCPU::ExUnknownCPU(const char* file, int line)
    : ExConcrete(file, line)
{
    setReason("Unknown CPU Type: Can not compute memory architecture parameters.");
}

OsMemoryArchEx::ExUnknownCPUBoard::ExUnknownCPUBoard(const char* file, int line)
    : ExConcrete(file, line)
{
    setReason("Unknown CPU Board Type: Can not compute memory architecture parameters.");
}

} // namespace Kr
