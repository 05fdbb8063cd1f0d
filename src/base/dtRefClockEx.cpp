#include <base/dtRefClockEx.h>

namespace Kr
{

DtRefClockEx::DtRefClockEx(const char* file, int line) noexcept
    : ExBase(file, line)
{
}

DtRefClockEx::SourceMismatch::SourceMismatch(const char* file, int line)
    : ExConcrete(file, line)
{
    setReason("Clock source name does not match system reference clock.");
}

DtRefClockEx::GetCount::GetCount(const char* file, int line)
    : ExConcrete(file, line)
{
    setReason("Reference clock failed to get clock value.");
}

} // namespace Kr
