// What only a POSIX host can do to the log: a process that forks, and a disk that fills up in the
// middle of a line.

#include "scenario.h"

#include <base/inInitGuard.h>
#include <base/internal/log/lgFile.h>
#include <base/log.h>
#include <base/osEnv.h>

#include <logTestFiles.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <map>
#include <thread>

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
    KR_LOG(group, Warning) << "before";
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
        ++counts[text.substr(0, text.find(' '))];
    }
    SCENARIO_CHECK(counts["before"] == 1);
    SCENARIO_CHECK(counts["child"] == messages + 1);
    SCENARIO_CHECK(counts["parent"] == messages);
    SCENARIO_CHECK(counts["other"] % messages == 0 && counts["other"] != 0);
    SCENARIO_CHECK(counts.size() == 4);
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
                                    {"fullDisk", fullDisk}};
    return Scenario::run(cases, argc, argv);
}
