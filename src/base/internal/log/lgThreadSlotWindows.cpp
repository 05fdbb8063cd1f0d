#include <base/internal/log/lgThreadSlot.h>

#include <platform/platform.h>

namespace Kr
{

namespace
{

// The compiler emulates thread-local variables on this system, at three times the cost. The slot is
// never freed: threads may log while the process ends.
const DWORD slot = TlsAlloc();

} // namespace

/// Leaves the thread's last error as it was: who logs a failure may look at it behind that.
LgQueue* LgThreadSlot::get() noexcept
{
    const DWORD error = GetLastError();
    void* const queue = TlsGetValue(slot);
    SetLastError(error);
    return static_cast<LgQueue*>(queue);
}

void LgThreadSlot::set(LgQueue* queue) noexcept
{
    TlsSetValue(slot, queue);
}

} // namespace Kr
