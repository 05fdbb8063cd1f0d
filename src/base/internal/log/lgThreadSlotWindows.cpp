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
const LgTarget* LgThreadSlot::get() noexcept
{
    const DWORD error = GetLastError();
    const void* target = TlsGetValue(slot);
    SetLastError(error);
    return static_cast<const LgTarget*>(target);
}

void LgThreadSlot::set(const LgTarget* target) noexcept
{
    TlsSetValue(slot, const_cast<LgTarget*>(target));
}

} // namespace Kr
