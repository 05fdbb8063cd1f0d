#include <base/internal/log/lgProcess.h>

#include <platform/platform.h>

namespace Kr
{

unsigned long LgProcess::getProcessId() noexcept
{
    return GetCurrentProcessId();
}

unsigned long LgProcess::getThreadId() noexcept
{
    return GetCurrentThreadId();
}

void LgProcess::onFork(void (*before)(), void (*inParent)(), void (*inChild)()) noexcept
{
    krOnFork(before, inParent, inChild);
}

} // namespace Kr
