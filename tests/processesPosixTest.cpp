// What a process on a POSIX host inherits besides, and what it leaves.

#include <base/osProcess.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using Kr::OsCommand;
using Kr::OsProcess;

std::string outputOf(const char* script)
{
    return OsProcess::run(OsCommand("sh", {"-c", script})).output;
}

bool hasChildren()
{
    siginfo_t info{};
    return ::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0;
}

/// After all tests, those of many processes among them.
class NoZombies : public testing::Environment
{
public:
    void TearDown() override { EXPECT_FALSE(hasChildren()); }
};

const testing::Environment* const noZombies = testing::AddGlobalTestEnvironment(new NoZombies);

TEST(ProcessesPosix, OnlyTheStreamsAreInherited)
{
    const int open = ::open("/dev/null", O_RDONLY);          // NOLINT: inheritable on purpose
    EXPECT_EQ("0\n1\n2\n3\n", outputOf("ls /proc/self/fd")); // 3: the listing itself
    ::close(open);
}

TEST(ProcessesPosix, StreamsThatAreClosedAreNoHarm)
{
    int kept[3];
    for (int i = 0; i < 3; ++i)
        kept[i] = ::fcntl(i, F_DUPFD_CLOEXEC, 10);
    for (int i = 0; i < 3; ++i)
        ::close(i);
    const auto result = OsProcess::run(OsCommand("sh", {"-c", "cat; echo e >&2"}), "text");
    OsCommand command("sh", {"-c", "x=$(readlink /proc/$$/fd/[01]); echo \"$x\" >&2"});
    const int own = ::open("/dev/zero", O_RDONLY | O_CLOEXEC); // gets the number of a stream
    OsProcess process(command.pipeStream(OsCommand::Errors));
    const std::string leads = process.communicate().errors;
    ::close(own);
    for (int i = 0; i < 3; ++i)
    {
        ::dup2(kept[i], i);
        ::close(kept[i]);
    }
    EXPECT_EQ("text", result.output);
    EXPECT_EQ("e\n", result.errors);
    EXPECT_EQ("/dev/null\n/dev/null\n", leads);
}

TEST(ProcessesPosix, SignalsAreAsAProgramExpectsThem)
{
    sigset_t all;
    sigset_t previous;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &previous);
    auto* const handler = std::signal(SIGPIPE, SIG_IGN);
    const std::string masks = outputOf("grep -E 'Sig(Blk|Ign)' /proc/self/status");
    std::signal(SIGPIPE, handler);
    ::pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    EXPECT_EQ("SigBlk:\t0000000000000000\n", masks.substr(0, 25));
    const auto ignored = std::stoull(masks.substr(masks.rfind('\t')), nullptr, 16);
    EXPECT_EQ(0u, ignored & 0x7FFFFFFF) << masks; // above are the C library's own
}

TEST(ProcessesPosix, NoZombieStays)
{
    EXPECT_TRUE(OsProcess(OsCommand("true")).wait().isSuccess());
    OsProcess(OsCommand("true").leadGroup()).wait();
    EXPECT_FALSE(hasChildren());
    { // the destructor's
        const OsProcess process(OsCommand("sleep", {"100"}));
    }
    EXPECT_FALSE(hasChildren());
    OsCommand command("sh", {"-c", "read x"});
    OsProcess process(command.pipeStream(OsCommand::Input));
    process.detach(); // closes the pipe, which ends it
    for (int i = 0; i < 6000 && hasChildren(); ++i)
        ::usleep(10000);
    EXPECT_FALSE(hasChildren());
}

TEST(ProcessesPosix, AStatusThatIsStolenIsLost)
{
    const OsProcess process(OsCommand("true"));
    ASSERT_EQ(static_cast<pid_t>(process.getId()),
              ::waitpid(static_cast<pid_t>(process.getId()), nullptr, 0));
    EXPECT_FALSE(process.isRunning());
    EXPECT_THROW(process.getExitStatus(), Kr::OsProcessEx::ExStatusLost);
}

TEST(ProcessesPosix, SignalsThatEndProgramsAreCodes)
{
    EXPECT_EQ("signal 15", OsProcess::run(OsCommand("sh", {"-c", "kill $$"})).status.getText());
    EXPECT_TRUE(OsProcess::run(OsCommand("sh", {"-c", "kill -KILL $$"})).status.isTerminated());
}

} // namespace
