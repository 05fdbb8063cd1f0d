#pragma once

/// @file
/// Internal to the library: who is logging, by the numbers of the process and of the calling
/// thread.

namespace Kr
{

class LgProcess
{
public:
    static unsigned long getProcessId() noexcept;
    static unsigned long getThreadId() noexcept;

    /// Has `before` called in the thread that forks the process, then `inParent` or `inChild`; on a
    /// system that has no fork, nothing is ever called. Once in a process.
    static void onFork(void (*before)(), void (*inParent)(), void (*inChild)()) noexcept;
};

} // namespace Kr
