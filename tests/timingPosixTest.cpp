// What the sleeper promises over the POSIX half of the platform, beyond what every system's timers
// do.

#include <base/inInitGuard.h>
#include <base/sleeper.h>

#include <platform/platform.h>

#include <gtest/gtest.h>

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

} // namespace
