// A process that forks goes on logging on both sides, into the same file.

#include "scenario.h"

#include <base/inInitGuard.h>
#include <base/log.h>
#include <base/osEnv.h>

#include <logTestFiles.h>

#include <atomic>
#include <cstdlib>
#include <map>
#include <thread>

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

} // namespace

int main(int argc, char** argv)
{
    ownPath = argv[0];
    const Scenario::Case cases[] = {{"forkedProcess", forkedProcess},
                                    {"logOnBothSides", logOnBothSides}};
    return Scenario::run(cases, argc, argv);
}
