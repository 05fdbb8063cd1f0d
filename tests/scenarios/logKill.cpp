// A log that survives: processes that are killed at random moments while they flood it, and what is
// found afterwards.

#include "scenario.h"

#include <base/inInitGuard.h>
#include <base/lgRecovery.h>
#include <base/log.h>
#include <base/osProcess.h>

#include <logTestFiles.h>
#include <twoProcesses.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace
{

constexpr int numThreads = 3;
constexpr int rounds = 200;
constexpr std::chrono::seconds patience(75); // where a sanitizer or a busy machine makes them slow

std::string ownPath;

// --- the programs ------------------------------------------------------------------------------

// Of the command line: where to log, in which round, and where the numbers are.
std::vector<std::string> words;

std::vector<std::string> makeSettings()
{
    const int round = std::atoi(words[1].c_str());
    std::vector<std::string> settings = {"program", "--logger.survive", "--logger.maxFiles=999",
                                         "--logger.groups=Test=Profiling",
                                         "--logger.directory=" + words[0]};
    if (round % 2 == 0)
        settings.emplace_back("--logger.blocking");
    if (round % 3 == 0)
        settings.emplace_back("--logger.format=json");
    if (round % 4 == 0)
        settings.emplace_back("--logger.maxSize=100K");
    return settings;
}

struct Library
{
    const std::vector<std::string> settings = makeSettings();
    const std::vector<const char*> arguments = [this]
    {
        std::vector<const char*> pointers;
        for (const std::string& each : settings)
            pointers.push_back(each.c_str());
        return pointers;
    }();
    int argc = static_cast<int>(arguments.size());
    const char* const* argv = arguments.data();
    const Kr::InInitGuard guard{argc, argv};
    const Kr::LgMinorGroup group{Kr::LgMajorGroup::getInstanceForName("Test"), "Flood"};
};

void recoverOthers()
{
    const Library library;
}

/// Threads that log until they are killed, into two logs. The numbers tell how many of their
/// statements have returned.
void flood()
{
    const Library library;
    SharedNumbers counts(words[2]);
    std::vector<std::thread> threads;
    for (int t = 0; t < numThreads; ++t)
        threads.emplace_back(
            [&, t]
            {
                for (int n = 0;; ++n)
                {
                    if (n % 3 == 0)
                        KR_LOG(library.group, Profiling) << '~' << t << ':' << n << '.';
                    else
                        KR_LOG(library.group, Warning) << '~' << t << ':' << n << '.';
                    counts[static_cast<std::size_t>(t)].store(n + 1);
                }
            });
    for (std::thread& thread : threads)
        thread.join();
}

void await(const std::atomic<int>& count)
{
    while (count == 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

/// Logs and lives on, and so does its child, until the last number is set.
void logAndFork()
{
    const Library library;
    SharedNumbers states(words[2]);
    KR_LOG(library.group, Warning) << "~0:0.";
    if (isForkedChild())
    {
        KR_LOG(library.group, Warning) << "~1:0.";
        Kr::LgLog::flush();
        states[1] = 1;
        await(states[3]);
        std::_Exit(0);
    }
    if (processesOfAFork == 2)
        await(states[1]);
    KR_LOG(library.group, Warning) << "~0:1.";
    states[0] = 1;
    await(states[3]);
}

void logAndEnd()
{
    const Library library;
    for (int i = 0; i < 3000; ++i)
        KR_LOG(library.group, Warning) << "~1:" << i << '.';
}

// --- the cases ---------------------------------------------------------------------------------

/// What stands in all logs of a folder.
struct Found
{
    explicit Found(const std::string& folder)
    {
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            if (entry.path().extension() != ".rings") // of one that lives
                for (const std::string& line : LogTest::readLines(entry.path().string()))
                    read(line);
    }

    void read(const std::string& line)
    {
        int thread = 0;
        int number = 0;
        char end = '\0';
        const std::size_t message = line.find('~');
        const std::size_t loss = line.find("Event overflow [");
        if (message != line.npos &&
            std::sscanf(line.c_str() + message, "~%d:%d%c", &thread, &number, &end) == 3 &&
            end == '.')
            ++times[{thread, number}];
        else if (loss != line.npos)
            lost += std::atoi(line.c_str() + loss + 16);
    }

    std::map<std::pair<int, int>, int> times; // how often a message is there
    int lost = 0;
};

/// Every message whose statement had returned is there once, or counted; at most one of each thread
/// was complete and had not returned.
void checkFound(const Found& found, SharedNumbers& counts, bool isBlocking)
{
    int returned = 0;
    int missing = 0;
    for (int t = 0; t < numThreads; ++t)
    {
        const int count = counts[static_cast<std::size_t>(t)];
        returned += count;
        for (int n = 0; n < count; ++n)
            missing += found.times.count({t, n}) == 0 ? 1 : 0;
        SCENARIO_CHECK(found.times.count({t, count + 1}) == 0);
    }
    for (const auto& [message, times] : found.times)
        SCENARIO_CHECK(times == 1);
    const int present = static_cast<int>(found.times.size());
    SCENARIO_CHECK(present + found.lost >= returned);
    SCENARIO_CHECK(present + found.lost <= returned + numThreads);
    SCENARIO_CHECK(isBlocking ? missing == 0 && found.lost == 0 : missing <= found.lost);
}

/// Where the programs log, and what they tell.
struct Place
{
    const LogTest::Folder logs;
    const LogTest::Folder beside;
    const std::string path = beside / "numbers";
    SharedNumbers numbers{path};

    Kr::OsProcess start(const char* program, int round) const
    {
        return Kr::OsProcess(
            Kr::OsCommand(ownPath, {"run", program, logs.getPath(), std::to_string(round), path}));
    }
};

void kill(Kr::OsProcess& process)
{
    SCENARIO_CHECK(process.isRunning());
    process.terminate();
    process.wait();
}

/// Where the next process that starts recovers, and where `kr-log` does.
void recover(const Place& place, bool byNextProcess)
{
    const std::string folder = place.logs.getPath();
    if (byNextProcess)
        SCENARIO_CHECK(place.start("recoverOthers", 0).wait().isSuccess());
    else
        SCENARIO_CHECK(Kr::LgRecovery::recover(folder.c_str()).problems.empty());
    const Kr::LgRecovery::Result rest = Kr::LgRecovery::recover(folder.c_str());
    SCENARIO_CHECK(rest.processes == 0 && rest.problems.empty());
}

int countRings(const Place& place)
{
    int rings = 0;
    for (const auto& entry : std::filesystem::directory_iterator(place.logs.getPath()))
        rings += entry.path().extension() == ".rings" ? 1 : 0;
    return rings;
}

void killed()
{
    std::mt19937 random(1);
    std::uniform_int_distribution<int> moment(0, 5000); // microseconds
    const auto deadline = std::chrono::steady_clock::now() + patience;
    int round = 0;
    for (;
         round < rounds && Scenario::failures() == 0 && std::chrono::steady_clock::now() < deadline;
         ++round)
    {
        Place place;
        Kr::OsProcess process = place.start("flood", round);
        while (place.numbers[0] == 0)
            std::this_thread::yield();
        std::this_thread::sleep_for(std::chrono::microseconds(moment(random)));
        kill(process);
        recover(place, round % 5 == 0);
        checkFound(Found(place.logs.getPath()), place.numbers, round % 2 == 0);
        SCENARIO_CHECK(countRings(place) == 0);
        if (Scenario::failures() != 0)
            std::fprintf(stderr, "in round %d\n", round);
    }
    std::printf("killed %d times\n", round);
    SCENARIO_CHECK(round >= 20);
}

/// What lives is left alone, and a forked child does not keep its parent's alive.
void alive()
{
    Place place;
    Kr::OsProcess process = place.start("logAndFork", 2);
    await(place.numbers[0]);
    const std::string folder = place.logs.getPath();
    const Kr::LgRecovery::Result result = Kr::LgRecovery::recover(folder.c_str());
    SCENARIO_CHECK(result.processes == 0 && result.problems.empty());
    SCENARIO_CHECK(countRings(place) == processesOfAFork);
    kill(process);
    recover(place, false);
    SCENARIO_CHECK(countRings(place) == processesOfAFork - 1); // the child's
    place.numbers[3] = 1;
    const Found found(folder);
    SCENARIO_CHECK(found.times.size() == static_cast<std::size_t>(processesOfAFork + 1));
    for (const auto& [message, times] : found.times)
        SCENARIO_CHECK(times == 1);
}

/// A program that ends in the normal way leaves nothing.
void ended()
{
    const Place place;
    SCENARIO_CHECK(place.start("logAndEnd", 2).wait().isSuccess());
    SCENARIO_CHECK(Found(place.logs.getPath()).times.size() == 3000);
    SCENARIO_CHECK(countRings(place) == 0);
}

constexpr Scenario::Case programs[] = {{"flood", flood},
                                       {"recoverOthers", recoverOthers},
                                       {"logAndFork", logAndFork},
                                       {"logAndEnd", logAndEnd}};

} // namespace

int main(int argc, char** argv)
{
    ownPath = argv[0];
    if (argc == 6 && std::strcmp(argv[1], "run") == 0)
    {
        words.assign(argv + 3, argv + 6);
        return Scenario::run(programs, argc - 1, argv + 1);
    }
    const Scenario::Case cases[] = {{"killed", killed}, {"alive", alive}, {"ended", ended}};
    return Scenario::run(cases, argc, argv);
}
