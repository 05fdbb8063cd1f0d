// A log that survives: processes that are killed at random moments while they flood it, and what is
// found afterwards.

#include "scenario.h"

#include <base/inInitGuard.h>
#include <base/lgRecovery.h>
#include <base/log.h>

#include <logTestFiles.h>

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <new>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr int numThreads = 3;
constexpr int rounds = 200;
constexpr std::chrono::seconds patience(75); // where a sanitizer or a busy machine makes them slow

/// What a process tells its parent, which outlives it: how many statements have returned.
using Counts = std::array<std::atomic<int>, numThreads>;

Counts& makeCounts()
{
    void* const memory =
        ::mmap(nullptr, sizeof(Counts), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    return *new (memory) Counts{};
}

std::vector<std::string> settings;

void setUp(const std::string& folder, int round)
{
    settings = {"program", "--logger.survive", "--logger.maxFiles=999",
                "--logger.groups=Test=Profiling", "--logger.directory=" + folder};
    if (round % 2 == 0)
        settings.emplace_back("--logger.blocking");
    if (round % 3 == 0)
        settings.emplace_back("--logger.format=json");
    if (round % 4 == 0)
        settings.emplace_back("--logger.maxSize=100K");
}

struct Library
{
    static std::vector<const char*> getWords()
    {
        std::vector<const char*> words;
        for (const std::string& word : settings)
            words.push_back(word.c_str());
        return words;
    }

    std::vector<const char*> words = getWords();
    int argc = static_cast<int>(words.size());
    const char* const* argv = words.data();
    const Kr::InInitGuard guard{argc, argv};
    const Kr::LgMinorGroup group{Kr::LgMajorGroup::getInstanceForName("Test"), "Flood"};
};

/// Threads that log until they are killed, into two logs.
[[noreturn]] void flood(Counts& counts)
{
    const Library library;
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
    std::abort();
}

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
void checkFound(const Found& found, const Counts& counts, bool isBlocking)
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

/// Starts what runs in a process of its own.
pid_t start(const std::function<void()>& run)
{
    const pid_t child = ::fork();
    if (child == 0)
    {
        run();
        std::_Exit(0);
    }
    return child;
}

void await(const std::atomic<int>& count)
{
    while (count == 0)
        std::this_thread::yield();
}

void kill(pid_t process)
{
    int status = 0;
    SCENARIO_CHECK(::kill(process, SIGKILL) == 0);
    SCENARIO_CHECK(::waitpid(process, &status, 0) == process && WIFSIGNALED(status));
}

/// Where the next process that starts recovers, and where `kr-log` does.
void recover(const std::string& folder, bool byNextProcess)
{
    int status = -1;
    if (!byNextProcess)
        SCENARIO_CHECK(Kr::LgRecovery::recover(folder.c_str()).problems.empty());
    else
        SCENARIO_CHECK(::waitpid(start([] { const Library library; }), &status, 0) > 0 &&
                       status == 0);
    const Kr::LgRecovery::Result rest = Kr::LgRecovery::recover(folder.c_str());
    SCENARIO_CHECK(rest.processes == 0 && rest.problems.empty());
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
        const LogTest::Folder folder;
        setUp(folder.getPath(), round);
        Counts& counts = makeCounts();
        const pid_t process = start([&] { flood(counts); });
        await(counts[0]);
        std::this_thread::sleep_for(std::chrono::microseconds(moment(random)));
        kill(process);
        recover(folder.getPath(), round % 5 == 0);
        checkFound(Found(folder.getPath()), counts, round % 2 == 0);
        if (Scenario::failures() != 0)
            std::fprintf(stderr, "in round %d\n", round);
        ::munmap(&counts, sizeof counts);
    }
    std::printf("killed %d times\n", round);
    SCENARIO_CHECK(round >= 20);
}

/// What lives is left alone, and a forked child does not keep its parent's alive.
void alive()
{
    const LogTest::Folder folder;
    setUp(folder.getPath(), 2);
    Counts& counts = makeCounts();
    const pid_t process = start(
        [&]
        {
            const Library library;
            KR_LOG(library.group, Warning) << "~0:0.";
            if (::fork() == 0)
            {
                KR_LOG(library.group, Warning) << "~1:0.";
                Kr::LgLog::flush();
                counts[1] = ::getpid();
                for (;;)
                    ::pause();
            }
            await(counts[1]);
            KR_LOG(library.group, Warning) << "~0:1.";
            counts[0] = 1;
            for (;;)
                ::pause();
        });
    await(counts[0]);
    const Kr::LgRecovery::Result result = Kr::LgRecovery::recover(folder.getPath().c_str());
    SCENARIO_CHECK(result.processes == 0 && result.problems.empty());
    const auto countRings = [&folder]
    {
        int rings = 0;
        for (const auto& entry : std::filesystem::directory_iterator(folder.getPath()))
            rings += entry.path().extension() == ".rings" ? 1 : 0;
        return rings;
    };
    SCENARIO_CHECK(countRings() == 2);
    kill(process);
    recover(folder.getPath(), false);
    SCENARIO_CHECK(countRings() == 1); // the child's
    SCENARIO_CHECK(::kill(counts[1], SIGKILL) == 0);
    const Found found(folder.getPath());
    SCENARIO_CHECK(found.times.size() == 3);
    for (const auto& [message, times] : found.times)
        SCENARIO_CHECK(times == 1);
}

/// A program that ends in the normal way leaves nothing, however often it starts and whoever forks.
void ended()
{
    const LogTest::Folder folder;
    setUp(folder.getPath(), 2);
    int status = -1;
    const pid_t process = start(
        []
        {
            const Library library;
            for (int i = 0; i < 3000; ++i)
                KR_LOG(library.group, Warning) << "~1:" << i << '.';
        });
    SCENARIO_CHECK(::waitpid(process, &status, 0) == process && status == 0);
    SCENARIO_CHECK(Found(folder.getPath()).times.size() == 3000);
    for (const auto& entry : std::filesystem::directory_iterator(folder.getPath()))
        SCENARIO_CHECK(entry.path().extension() != ".rings");
}

} // namespace

int main(int argc, char** argv)
{
    const Scenario::Case cases[] = {{"killed", killed}, {"alive", alive}, {"ended", ended}};
    return Scenario::run(cases, argc, argv);
}
