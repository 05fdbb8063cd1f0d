#include <platform/posix/handle.h>

#include <pthread.h>
#include <unistd.h>

DWORD GetCurrentProcessId() noexcept
{
    return static_cast<DWORD>(::getpid());
}

HANDLE GetCurrentProcess() noexcept
{
    return INVALID_HANDLE_VALUE; // the two are one value, as on the system that they come from
}

BOOL GetProcessHandleCount(HANDLE process, DWORD* count) noexcept
{
    if (process != GetCurrentProcess() || count == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    *count = KrHandleObject::getCount();
    return 1;
}

void krOnFork(void (*before)(), void (*inParent)(), void (*inChild)()) noexcept
{
    ::pthread_atfork(before, inParent, inChild);
}
