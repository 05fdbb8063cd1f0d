#include <platform/posix/handle.h>

#undef NDEBUG // the runtime declares what stands behind its assert only where that is on
#include <assert.h>

#include <pthread.h>
#include <unistd.h>

namespace
{

thread_local DWORD threadId = 0; // 0: not asked for yet, since asking is a system call

/// A forked process has one thread, which has a new number.
void forgetThreadId() noexcept
{
    threadId = 0;
}

const int forgetsInChild = ::pthread_atfork(nullptr, nullptr, forgetThreadId);

} // namespace

DWORD GetCurrentProcessId() noexcept
{
    return static_cast<DWORD>(::getpid());
}

DWORD GetCurrentThreadId() noexcept
{
    if (threadId == 0)
        threadId = static_cast<DWORD>(::gettid());
    return threadId;
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

void _assert(const char* text, const char* file, unsigned line)
{
    ::__assert_fail(text, file, line, "libKRbase");
}
