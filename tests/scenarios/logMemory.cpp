// The logger where memory is short: every allocation fails in turn, once or from then on, and every
// message is in the file or counted.

#include "scenario.h"

#include <base/internal/log/lgProducer.h>
#include <base/lgListener.h>
#include <base/lgTimeline.h>
#include <base/log.h>
#include <base/osEnv.h>
#include <base/threadName.h>

#include <logTestFiles.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <new>
#include <optional>
#include <thread>
#include <vector>

namespace
{

std::atomic<long> countdown{0}; // to the allocation that fails
std::atomic<bool> isArmed{false};
std::atomic<bool> failsForGood{false};
std::atomic<int> failures{0};

bool mustFail()
{
    if (!isArmed)
        return false;
    const long left = --countdown;
    const bool fails = left == 0 || (left < 0 && failsForGood);
    failures += fails ? 1 : 0;
    return fails;
}

} // namespace

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return mustFail() ? nullptr : std::malloc(size != 0 ? size : 1);
}

void* operator new(std::size_t size)
{
    if (void* memory = operator new(size, std::nothrow))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace
{

/// How many messages were sent; the program logs in every way that takes memory.
std::atomic<std::uint64_t> sent{0};

void logSome(const Kr::LgMinorGroup& group, int count)
{
    for (int i = 0; i < count; ++i, ++sent)
        KR_LOG(group, Warning) << "message " << i << " of " << 0.5;
}

int logWithin(const Kr::LgMinorGroup& group)
{
    logSome(group, 1);
    return 1;
}

void logInThread(const Kr::LgMinorGroup& group)
{
    Kr::ThreadName::set("a thread with a longer name");
    {
        const Kr::LgSpan span("part");
    }
    logSome(group, 5);
    KR_LOG(group, Warning) << "outer " << logWithin(group);
    ++sent;
}

/// False if the first start failed, as it may.
bool start()
{
    try
    {
        Kr::LgLog::init();
        return true;
    }
    catch (const std::bad_alloc&)
    {
        return false;
    }
}

void runThread(const Kr::LgMinorGroup& group)
{
    std::optional<std::thread> thread;
    try
    {
        thread.emplace(logInThread, std::cref(group));
        thread->join();
    }
    catch (const std::bad_alloc&)
    {
        SCENARIO_CHECK(!thread.has_value()); // the program's own, and not the logger's
    }
}

/// The numbers that the file's records of lost messages hold, and how many other lines there are.
struct Accounts
{
    explicit Accounts(const std::string& path)
    {
        for (const std::string& line : LogTest::readLines(path))
        {
            unsigned long count = 0;
            const std::string text = LogTest::textOf(line);
            if (std::sscanf(text.c_str(), "%lu messages were lost", &count) == 1)
                told += count;
            else
                ++messages;
        }
    }

    std::uint64_t told = 0;
    std::uint64_t messages = 0;
};

/// The life of a logger, with the allocations failing in the start or after it.
void runLogger(bool inStart)
{
    isArmed = inStart;
    const bool isStarted = start();
    isArmed = false;
    if (!isStarted)
        Kr::LgLog::init();
    {
        const Kr::LgMinorGroup group(Kr::LgMajorGroup::getInstanceForName("Test"), "Memory");
        std::uint64_t heard = 0;
        const Kr::LgListener listener([&](const Kr::LgMessage&) { ++heard; });
        isArmed = !inStart;
        for (int i = 0; i < 3; ++i)
        {
            logSome(group, 3);
            runThread(group);
        }
        KR_LOG(group, FatalError) << "fatal";
        ++sent;
        isArmed = false;
    }
    Kr::LgLog::destroy();
}

/// Lets the n-th allocation fail; returns whether there were so many. Each logger has a thread of
/// its own, so that nothing is left of the one before.
bool failAt(long n, bool inStart, bool forGood)
{
    const LogTest::Folder folder;
    Kr::OsEnv::putVariable(("KR_LOG_DIR=" + folder.getPath()).c_str());
    const std::uint64_t lostBefore = Kr::LgLog::getLostCount();
    sent = 0;
    failures = 0;
    countdown = n;
    failsForGood = forGood;
    std::thread(runLogger, inStart).join();
    const std::uint64_t lost = Kr::LgLog::getLostCount() - lostBefore;
    const Accounts found(folder / "events.log");
    if (found.messages + lost != sent || found.told != lost)
        std::fprintf(stderr, "allocation %ld: %lu sent, %lu written, %lu lost, %lu told\n", n,
                     static_cast<unsigned long>(sent), static_cast<unsigned long>(found.messages),
                     static_cast<unsigned long>(lost), static_cast<unsigned long>(found.told));
    SCENARIO_CHECK(found.messages + lost == sent && found.told == lost);
    SCENARIO_CHECK(LogTest::JsonCheck::isValue(LogTest::readFile(folder / "timeline.json")));
    for (const auto& entry : std::filesystem::directory_iterator(folder.getPath()))
        SCENARIO_CHECK(entry.path().extension() != ".rings");
    return failures != 0;
}

void walk(bool inStart, bool forGood)
{
    Kr::OsEnv::putVariable("KR_LOG_TIMELINE=timeline.json");
    long n = 1;
    while (failAt(n, inStart, forGood) && Scenario::failures() == 0)
        ++n;
    SCENARIO_CHECK(n > 10); // the runtime's own shared library may not be among them
    std::printf("%ld allocations failed in turn\n", n - 1);
}

void once()
{
    walk(true, false);
    walk(false, false);
}

void forGood()
{
    walk(true, true);
    walk(false, true);
}

/// With queues that outlive the process.
void surviving()
{
    Kr::OsEnv::putVariable("KR_LOG_SURVIVE=on");
    once();
    forGood();
}

} // namespace

int main(int argc, char** argv)
{
    const Scenario::Case cases[] = {{"once", once}, {"forGood", forGood}, {"surviving", surviving}};
    return Scenario::run(cases, argc, argv);
}
