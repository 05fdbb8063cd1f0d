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
#include <shortMemory.h>

#include <atomic>
#include <new>
#include <optional>
#include <thread>
#include <vector>

namespace
{

/// How many messages were sent; the program logs in every way that takes memory.
std::atomic<std::uint64_t> sent{0};
std::atomic<std::uint64_t> sentSpans{0};

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
        ++sentSpans;
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

/// What the logs hold, and what they tell of.
struct Accounts
{
    explicit Accounts(const LogTest::Folder& folder)
    {
        for (const std::string& line : LogTest::readLines(folder / "events.log"))
        {
            unsigned long count = 0;
            const std::string text = LogTest::textOf(line);
            if (std::sscanf(text.c_str(), "%lu messages were lost", &count) == 1)
                told += count;
            else
                ++messages;
        }
        const std::string timeline = LogTest::readFile(folder / "timeline.json");
        SCENARIO_CHECK(LogTest::JsonCheck::isValue(timeline));
        spans = sumOf(timeline, "\"cat\":\"span\"", false) + sumOf(timeline, " spans lost", true) +
                sumOf(timeline, " events were lost", true);
    }

    /// The numbers before all places where the text stands, or how many there are.
    static std::uint64_t sumOf(const std::string& all, const std::string& text, bool isNumber)
    {
        std::uint64_t sum = 0;
        for (std::size_t at = 0; (at = all.find(text, at)) != all.npos; ++at)
            sum += isNumber ? std::stoul(all.substr(all.rfind('"', at) + 1)) : 1;
        return sum;
    }

    std::uint64_t told = 0;
    std::uint64_t messages = 0;
    std::uint64_t spans = 0; ///< that are there or told, with what else the timeline lacks
};

/// The life of a logger, with the allocations failing in the start or after it. Returns whether one
/// has.
bool runLogger(long n, bool inStart, bool forGood)
{
    if (inStart)
        ShortMemory::begin(n, forGood);
    const bool isStarted = start();
    ShortMemory::end();
    if (!isStarted)
        Kr::LgLog::init();
    bool hasFailed = false;
    {
        const Kr::LgMinorGroup group(Kr::LgMajorGroup::getInstanceForName("Test"), "Memory");
        std::uint64_t heard = 0;
        const Kr::LgListener listener([&](const Kr::LgMessage&) { ++heard; });
        if (!inStart)
            ShortMemory::begin(n, forGood);
        for (int i = 0; i < 3; ++i)
        {
            logSome(group, 3);
            runThread(group);
        }
        KR_LOG(group, FatalError) << "fatal";
        ++sent;
        hasFailed = ShortMemory::end();
    }
    Kr::LgLog::destroy();
    return hasFailed;
}

/// Lets the n-th allocation fail; returns whether there were so many. Each logger has a thread of
/// its own, so that nothing is left of the one before.
bool failAt(long n, bool inStart, bool forGood)
{
    const LogTest::Folder folder;
    Kr::OsEnv::putVariable(("KR_LOG_DIR=" + folder.getPath()).c_str());
    const std::uint64_t lostBefore = Kr::LgLog::getLostCount();
    sent = 0;
    sentSpans = 0;
    bool hasFailed = false;
    std::thread([&] { hasFailed = runLogger(n, inStart, forGood); }).join();
    const std::uint64_t lost = Kr::LgLog::getLostCount() - lostBefore;
    const Accounts found(folder);
    const bool isRight =
        found.messages + lost == sent && found.told == lost && found.spans >= sentSpans;
    if (!isRight)
        std::fprintf(
            stderr, "allocation %ld: %lu sent, %lu written, %lu lost, %lu told; %lu of %lu spans\n",
            n, static_cast<unsigned long>(sent), static_cast<unsigned long>(found.messages),
            static_cast<unsigned long>(lost), static_cast<unsigned long>(found.told),
            static_cast<unsigned long>(found.spans), static_cast<unsigned long>(sentSpans));
    SCENARIO_CHECK(isRight);
    for (const auto& entry : std::filesystem::directory_iterator(folder.getPath()))
        SCENARIO_CHECK(entry.path().extension() != ".rings");
    return hasFailed;
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
