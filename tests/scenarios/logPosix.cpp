// What only a POSIX host can do to the log: a process that forks, and a disk that fills up in the
// middle of a line.

#include "scenario.h"

#include <base/inInitGuard.h>
#include <base/internal/log/lgFile.h>
#include <base/lgListener.h>
#include <base/log.h>
#include <base/osEnv.h>

#include <logTestFiles.h>
#include <shortMemory.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <map>
#include <thread>
#include <vector>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr int messages = 500;

void logSome(const Kr::LgMinorGroup& group, const char* who)
{
    for (int i = 0; i < messages; ++i)
        KR_LOG(group, Warning) << who << " " << i;
}

/// Forks while another thread logs; every message is in the file once.
void logOnBothSides()
{
    int argc = 0;
    const char* const* argv = nullptr;
    const Kr::InInitGuard guard(argc, argv);
    const Kr::LgMinorGroup group(Kr::LgMajorGroup::getInstanceForName("Test"), "Fork");
    KR_LOG(group, Warning) << "before, with the file not yet open";
    Kr::LgLog::flush();
    KR_LOG(group, Warning) << "before, with something to write while it forks";
    std::atomic<bool> isStopping{false};
    std::thread other(
        [&]
        {
            do
                logSome(group, "other");
            while (!isStopping);
        });
    const pid_t child = ::fork();
    if (child == 0)
    {
        logSome(group, "child");
        KR_LOG(group, FatalError) << "child done";
        std::_Exit(0);
    }
    logSome(group, "parent");
    int status = -1;
    SCENARIO_CHECK(::waitpid(child, &status, 0) == child && status == 0);
    isStopping = true;
    other.join();
}

std::string ownPath;

/// The settings are read when a process starts, so it is another one that logs.
void forkedProcess()
{
    const LogTest::Folder folder;
    Kr::OsEnv::putVariable(("KR_LOG_DIR=" + folder.getPath()).c_str());
    Kr::OsEnv::putVariable("KR_BLOCKING_TRACE=on");
    SCENARIO_CHECK(std::system(("'" + ownPath + "' logOnBothSides").c_str()) == 0);
    std::map<std::string, int> counts;
    for (const std::string& line : LogTest::readLines(folder / "events.log"))
    {
        const std::string text = LogTest::textOf(line);
        ++counts[text.substr(0, text.find_first_of(" ,"))];
    }
    SCENARIO_CHECK(counts["before"] == 2);
    SCENARIO_CHECK(counts["child"] == messages + 1);
    SCENARIO_CHECK(counts["parent"] == messages);
    SCENARIO_CHECK(counts["other"] % messages == 0 && counts["other"] != 0);
    SCENARIO_CHECK(counts.size() == 4);
}

/// Two threads fork at once, and a listener hears the messages meanwhile: the thread that started
/// the logger is known in its child, and no child waits for a lock that nobody holds.
void forkInTwoThreads()
{
    int argc = 0;
    const char* const* argv = nullptr;
    const Kr::InInitGuard guard(argc, argv);
    const Kr::LgMinorGroup group(Kr::LgMajorGroup::getInstanceForName("Test"), "Fork");
    std::atomic<int> heard{0};
    const Kr::LgListener listener([&](const Kr::LgMessage&) { ++heard; });
    const auto forkSome = [&](bool isMain)
    {
        for (int i = 0; i < 30; ++i)
        {
            KR_LOG(group, Warning) << "parent";
            const pid_t child = ::fork();
            if (child == 0)
            {
                const bool isKnown = (Kr::LgLog::getQueue()->getThreadId() == 0) == isMain;
                const Kr::LgListener own([](const Kr::LgMessage&) {});
                KR_LOG(group, FatalError) << "child";
                std::_Exit(isKnown ? 0 : 1);
            }
            int status = -1;
            SCENARIO_CHECK(::waitpid(child, &status, 0) == child && status == 0);
        }
    };
    std::thread other(forkSome, false);
    forkSome(true);
    other.join();
}

void forksOfTwoThreads()
{
    const LogTest::Folder folder;
    Kr::OsEnv::putVariable(("KR_LOG_DIR=" + folder.getPath()).c_str());
    SCENARIO_CHECK(std::system(("'" + ownPath + "' forkInTwoThreads").c_str()) == 0);
    std::map<std::string, int> counts;
    for (const std::string& line : LogTest::readLines(folder / "events.log"))
        ++counts[LogTest::textOf(line)];
    SCENARIO_CHECK(counts["parent"] == 60 && counts["child"] == 60);
}

/// Returns whether an allocation has failed in the child.
bool forkWithoutMemory(long n, bool forGood)
{
    const LogTest::Folder folder;
    Kr::OsEnv::putVariable(("KR_LOG_DIR=" + folder.getPath()).c_str());
    Kr::LgLog::init();
    const Kr::LgMinorGroup group(Kr::LgMajorGroup::getInstanceForName("Test"), "Fork");
    KR_LOG(group, Warning) << "parent";
    Kr::LgLog::flush();
    const std::uint64_t lostBefore = Kr::LgLog::getLostCount();
    ShortMemory::begin(n, forGood);
    const pid_t child = ::fork();
    if (child == 0)
    {
        for (int i = 0; i < 3; ++i)
            KR_LOG(group, Warning) << "child";
        const int hasFailed = ShortMemory::end() ? 1 : 0;
        KR_LOG(group, Warning) << "child";
        Kr::LgLog::destroy();
        std::_Exit(2 * static_cast<int>(Kr::LgLog::getLostCount() - lostBefore) + hasFailed);
    }
    ShortMemory::end();
    int status = -1;
    SCENARIO_CHECK(::waitpid(child, &status, 0) == child && WIFEXITED(status));
    Kr::LgLog::destroy();
    std::map<std::string, int> counts;
    int told = 0;
    for (const std::string& line : LogTest::readLines(folder / "events.log"))
    {
        const int number = std::atoi(LogTest::textOf(line).c_str());
        told += number;
        counts[LogTest::textOf(line)] += number == 0 ? 1 : 0;
    }
    const int lost = WEXITSTATUS(status) / 2;
    if (counts["child"] + told != 4 || told != lost)
        std::fprintf(stderr, "allocation %ld: %d written, %d told, %d lost\n", n, counts["child"],
                     told, lost);
    SCENARIO_CHECK(counts["child"] + told == 4 && told == lost && counts["parent"] == 1);
    return WEXITSTATUS(status) % 2 != 0;
}

/// Where memory is short when a process is forked, the child tells how many messages it has lost,
/// and logs when there is memory again.
void forkedWithoutMemory()
{
    for (const bool forGood : {false, true})
    {
        long n = 1;
        while (forkWithoutMemory(n, forGood) && Scenario::failures() == 0)
            ++n;
        SCENARIO_CHECK(n > 10);
    }
}

/// How much address space the process may take beyond what it has.
void limitMemory(rlim_t more)
{
    long pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    rlimit limit = {};
    SCENARIO_CHECK(::getrlimit(RLIMIT_AS, &limit) == 0);
    limit.rlim_cur = more == RLIM_INFINITY
                         ? limit.rlim_max
                         : static_cast<rlim_t>(pages * ::sysconf(_SC_PAGESIZE)) + more;
    SCENARIO_CHECK(::setrlimit(RLIMIT_AS, &limit) == 0);
}

/// Threads for whose queues there is no memory: each message is in the file or told.
void logInManyThreads(rlim_t memory)
{
    constexpr int numThreads = 200;
    const std::uint64_t lostBefore = Kr::LgLog::getLostCount();
    const LogTest::Folder folder;
    Kr::OsEnv::putVariable(("KR_LOG_DIR=" + folder.getPath()).c_str());
    Kr::LgLog::init();
    {
        const Kr::LgMinorGroup group(Kr::LgMajorGroup::getInstanceForName("Test"), "Memory");
        std::atomic<int> waiting{0};
        std::atomic<bool> mayGo{false};
        std::vector<std::thread> threads;
        for (int i = 0; i < numThreads; ++i)
            threads.emplace_back(
                [&]
                {
                    ++waiting;
                    while (!mayGo)
                        std::this_thread::yield();
                    for (int n = 0; n < 10; ++n)
                        KR_LOG(group, Warning) << "message " << n;
                });
        while (waiting != numThreads)
            std::this_thread::yield();
        limitMemory(memory);
        mayGo = true;
        for (std::thread& thread : threads)
            thread.join();
        limitMemory(RLIM_INFINITY);
    }
    Kr::LgLog::destroy();
    std::uint64_t told = 0;
    std::uint64_t written = 0;
    for (const std::string& line : LogTest::readLines(folder / "events.log"))
    {
        unsigned long count = 0;
        const std::string text = LogTest::textOf(line);
        std::sscanf(text.c_str(), "%lu messages were lost", &count);
        told += count;
        written += text.find("message ") == 0 ? 1 : 0;
    }
    SCENARIO_CHECK(told != 0 && told == Kr::LgLog::getLostCount() - lostBefore);
    SCENARIO_CHECK(written + told == 10 * numThreads);
}

void noMemoryForThreads()
{
    for (const rlim_t memory : {0, 100000, 1000000})
    {
        const pid_t child = ::fork(); // what one leaves free the next would find
        if (child == 0)
        {
            logInManyThreads(memory);
            std::_Exit(Scenario::failures());
        }
        int status = -1;
        SCENARIO_CHECK(::waitpid(child, &status, 0) == child && status == 0);
    }
}

void limitFileSize(rlim_t size)
{
    rlimit limit = {};
    SCENARIO_CHECK(::getrlimit(RLIMIT_FSIZE, &limit) == 0);
    limit.rlim_cur = size;
    SCENARIO_CHECK(::setrlimit(RLIMIT_FSIZE, &limit) == 0);
}

/// The part of a line that still found room is taken back, and the file goes on when there is room
/// again.
void fullDisk()
{
    const LogTest::Folder folder;
    std::signal(SIGXFSZ, SIG_IGN);
    Kr::LgFileSettings settings;
    settings.path = folder / "events.log";
    const auto file = Kr::LgFile::create(settings);
    const auto append = [&](char letter)
    { return file->append((std::string(599, letter) + '\n').c_str(), 600) == 600; };
    limitFileSize(1000);
    SCENARIO_CHECK(append('a'));
    SCENARIO_CHECK(!append('b'));
    SCENARIO_CHECK(file->getProblem() == "There is not enough space on the disk.");
    SCENARIO_CHECK(std::filesystem::file_size(settings.path) == 600);
    limitFileSize(RLIM_INFINITY);
    SCENARIO_CHECK(append('c'));
    SCENARIO_CHECK(LogTest::readFile(settings.path) ==
                   std::string(599, 'a') + '\n' + std::string(599, 'c') + '\n');
}

} // namespace

int main(int argc, char** argv)
{
    ownPath = argv[0];
    const Scenario::Case cases[] = {{"forkedProcess", forkedProcess},
                                    {"logOnBothSides", logOnBothSides},
                                    {"forksOfTwoThreads", forksOfTwoThreads},
                                    {"forkInTwoThreads", forkInTwoThreads},
                                    {"forkedWithoutMemory", forkedWithoutMemory},
                                    {"noMemoryForThreads", noMemoryForThreads},
                                    {"fullDisk", fullDisk}};
    return Scenario::run(cases, argc, argv);
}
