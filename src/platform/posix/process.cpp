#include <platform/platform.h>

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

void krOnFork(void (*before)(), void (*inParent)(), void (*inChild)()) noexcept
{
    ::pthread_atfork(before, inParent, inChild);
}

void _assert(const char* text, const char* file, unsigned line)
{
    ::__assert_fail(text, file, line, "libKRbase");
}
