// What a POSIX host has to itself.

#include <platform/console.h>

#include <gtest/gtest.h>

#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace
{

/// Has the standard output lead to the path while the call is made.
bool enableColours(const char* path)
{
    const int kept = ::dup(STDOUT_FILENO);
    const int file = ::open(path, O_WRONLY | O_NOCTTY | O_CLOEXEC);
    EXPECT_GE(file, 0) << path;
    ::dup2(file, STDOUT_FILENO);
    const bool result = krEnableColours();
    ::dup2(kept, STDOUT_FILENO);
    ::close(file);
    ::close(kept);
    return result;
}

TEST(PlatformConsole, ATerminalShowsColours)
{
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_EQ(::grantpt(terminal), 0);
    ASSERT_EQ(::unlockpt(terminal), 0);
    EXPECT_TRUE(enableColours(::ptsname(terminal)));
    EXPECT_FALSE(enableColours("/dev/null"));
    ::close(terminal);
}

} // namespace
