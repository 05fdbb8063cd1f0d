#include <base/trace.h>

#include <platform/platform.h>

namespace Kr
{

std::uint32_t TraceManager::performGetThread() noexcept
{
    return GetCurrentThreadId();
}

} // namespace Kr
