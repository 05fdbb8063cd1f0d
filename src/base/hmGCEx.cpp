#include <base/hmGCEx.h>

namespace Kr
{

HmGCEx::HmGCEx(const char* file, int line) noexcept
    : ExBase(file, line)
{
}

HmGCEx::ExGarbageDetected::ExGarbageDetected(const char* file, int line)
    : ExConcrete(file, line)
{
    setReason("Garbage Collector has detected leaks.");
}

} // namespace Kr
