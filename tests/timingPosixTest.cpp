// What the sleeper promises over the POSIX half of the platform, beyond what every system's timers
// do.

#include <base/inInitGuard.h>
#include <base/sleeper.h>

#include <platform/platform.h>
#include <platform/posix/wakeLead.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

namespace
{

DWORD countHandles()
{
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    return count;
}

TEST(SleepingOnPosix, EveryEventIsClosedWithTheSleeper)
{
    const DWORD before = countHandles();
    std::unique_ptr<Kr::Sleeper> sleeper(Kr::Sleeper::create());
    std::vector<std::thread> threads;
    for (int i = 0; i < 100; ++i)
        threads.emplace_back([&sleeper] { sleeper->sleep(0.001); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(countHandles(), before + 100);
    sleeper.reset();
    EXPECT_EQ(countHandles(), before);
}

TEST(SleepingOnPosix, NeverEndsEarly)
{
    const std::unique_ptr<Kr::Sleeper> sleeper(Kr::Sleeper::create());
    for (int i = 0; i < 100; ++i)
    {
        const double seconds = 0.001 * (1 + i % 3);
        const double begin = sleeper->getCurrentTime();
        sleeper->sleep(seconds);
        // The counter's rate is known to some parts per million.
        EXPECT_GE(sleeper->getCurrentTime() - begin, seconds * (1. - 1e-4));
    }
}

/// What a tenth of them are below.
double getTenth(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 10];
}

/// Both by turns, so that the machine is as busy for the one as for the other; on one that has more
/// to do than processors, only the best of either show more than the wait for a processor. What the
/// runtime's sleep leaves to the kernel's convenience is more than half of their delay.
TEST(SleepingOnPosix, EndsMuchSoonerThanTheRuntimes)
{
    const std::unique_ptr<Kr::Sleeper> sleeper(Kr::Sleeper::create());
    const auto measure = [&sleeper](auto sleep)
    {
        const double begin = sleeper->getCurrentTime();
        sleep();
        return sleeper->getCurrentTime() - begin - 0.002;
    };
    std::vector<double> ours, theirs;
    for (int i = 0; i < 100; ++i)
    {
        ours.push_back(measure([&sleeper] { sleeper->sleep(0.002); }));
        theirs.push_back(
            measure([] { std::this_thread::sleep_for(std::chrono::milliseconds(2)); }));
    }
    EXPECT_LT(getTenth(ours), 0.75 * getTenth(theirs));
}

TEST(WakeLeads, FollowTheDelaysUpToTheirGreatest)
{
    KrWakeLead lead;
    const struct
    {
        KrMoment delay;
        KrMoment least, most; ///< where the lead is after a hundred of them
    } cases[] = {{40'000, 39'000, 40'000},
                 {10'000'000, KrWakeLead::greatest - 1000, KrWakeLead::greatest},
                 {5'000, 5'000, 10'000},
                 {0, 0, 1'000}};
    for (const auto& entry : cases)
    {
        for (int i = 0; i < 100; ++i)
            lead.learn(entry.delay);
        EXPECT_GE(lead.get(), entry.least) << entry.delay;
        EXPECT_LE(lead.get(), entry.most) << entry.delay;
    }
    lead.learn(40'000); // one that is late moves it further than one that is early
    const KrMoment late = lead.get();
    lead.learn(0);
    EXPECT_GT(lead.get(), late / 2);
}

TEST(WakeLeads, LeaveAProcessorToTheOthers)
{
    const unsigned int processors = std::thread::hardware_concurrency();
    std::vector<std::unique_ptr<KrAwake>> awake;
    for (unsigned int i = 0; i + 1 < processors; ++i)
    {
        awake.push_back(std::make_unique<KrAwake>());
        EXPECT_TRUE(awake.back()->isAllowed()) << i;
    }
    EXPECT_FALSE(KrAwake().isAllowed());
    if (!awake.empty())
    {
        awake.pop_back();
        EXPECT_TRUE(KrAwake().isAllowed());
    }
}

} // namespace
