#pragma once

/// @file
/// Who is running: the operating system's numbers of the process and of the calling thread. They
/// are right in a forked process, too.

#include <cstdint>

namespace Kr
{

class ProcessIdentity
{
public:
    static std::uint32_t getProcessId() noexcept;
    static std::uint32_t getThreadId() noexcept;

    /// Has `before` called in the thread that forks the process, then `inParent` or `inChild`; on a
    /// system that has no fork, nothing is ever called. Once in a process.
    static void onFork(void (*before)(), void (*inParent)(), void (*inChild)()) noexcept;

    /// Has `action` called when the calling thread ends, once, whoever asks how often; its
    /// thread-local objects may go before that or after. Not where the end of the process ends it.
    /// False if there is no memory for that, or the process is ending.
    static bool atThreadEnd(void (*action)() noexcept) noexcept;
};

} // namespace Kr
