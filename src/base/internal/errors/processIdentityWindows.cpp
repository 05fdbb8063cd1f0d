#include <base/internal/errors/processIdentity.h>

#include <platform/platform.h>

namespace Kr
{

std::uint32_t ProcessIdentity::getProcessId() noexcept
{
    return GetCurrentProcessId();
}

std::uint32_t ProcessIdentity::getThreadId() noexcept
{
    return GetCurrentThreadId();
}

void ProcessIdentity::onFork(void (*before)(), void (*inParent)(), void (*inChild)()) noexcept
{
    krOnFork(before, inParent, inChild);
}

bool ProcessIdentity::atThreadEnd(void (*action)() noexcept) noexcept
{
    return krAtThreadEnd(action) != 0;
}

} // namespace Kr
