#include <base/internal/testing/testHoldings.h>

#include <platform/platform.h>

namespace Kr
{

std::int64_t TestHoldings::performCountHandles() noexcept
{
    DWORD count = 0;
    return GetProcessHandleCount(GetCurrentProcess(), &count) != 0 ? count : 0;
}

} // namespace Kr
