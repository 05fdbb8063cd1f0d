#include <platform/platform.h>

#include <pthread.h>
#include <unistd.h>

DWORD GetCurrentProcessId() noexcept
{
    return static_cast<DWORD>(::getpid());
}

void krOnFork(void (*before)(), void (*inParent)(), void (*inChild)()) noexcept
{
    ::pthread_atfork(before, inParent, inChild);
}
