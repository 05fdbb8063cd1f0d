// What only a POSIX host can do: a process that forks.

#include <base/raise.h>
#include <base/trace.h>

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

namespace
{

/// The thread that the last raise names.
std::uint32_t raiseAndGetThread()
{
    std::uint32_t thread = 0;
    EXPECT_THROW(Kr::raise<Kr::ExBadException>(KR_HERE), Kr::ExBadException);
    Kr::TraceManager::getInstance().visitRaises(
        [](const Kr::TraceManager::Raise& raise, void* context)
        { *static_cast<std::uint32_t*>(context) = raise.thread; },
        &thread);
    return thread;
}

TEST(Trace, AForkedProcessNamesItsOwnThread)
{
    EXPECT_EQ(static_cast<std::uint32_t>(::getpid()), raiseAndGetThread());
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(raiseAndGetThread() == static_cast<std::uint32_t>(::getpid()) ? 0 : 1);
    int status = -1;
    EXPECT_EQ(child, ::waitpid(child, &status, 0));
    EXPECT_EQ(0, status);
}

} // namespace
