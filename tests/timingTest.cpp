// The sleeper and the periodic timer. The machine may be busy: times have a lower bound, which the
// system guarantees, and beside it only one that shows a hang.

#include "raised.h"

#include <base/inInitGuard.h>
#include <base/internal/clocks/beatTest.h>
#include <base/krInitPackages.h>
#include <base/periodicTimer.h>
#include <base/sleeper.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

namespace
{

constexpr double hang = 60.; // seconds

/// What a sleep may lack: some systems' timers count in whole milliseconds.
constexpr double tick = 0.001;

/// The packages of the whole library, up while the tests run.
class Library : public testing::Environment
{
    void SetUp() override
    {
        int count = 0;
        const char* const* arguments = nullptr;
        _guard = std::make_unique<Kr::InInitGuard>(count, arguments);
    }
    void TearDown() override { _guard.reset(); }

    std::unique_ptr<Kr::InInitGuard> _guard;
};

const testing::Environment* const library = testing::AddGlobalTestEnvironment(new Library);

double now()
{
    return Kr::Sleeper::getInstance().getCurrentTime();
}

// Sleeping

TEST(Sleeping, CutsToMillisecondsAndRefusesWhatIsNoTime)
{
    const struct
    {
        double seconds;
        double least; ///< how long it sleeps at least; 0 for not at all
    } cases[] = {{0., 0.},
                 {0.0005, 0.},
                 {-0., 0.},
                 {-5., 0.},
                 {-std::numeric_limits<double>::infinity(), 0.},
                 {std::nan(""), 0.},
                 {0.001, 0.001},
                 {0.002, 0.002},
                 {0.0129, 0.012}};
    for (const auto& entry : cases)
    {
        const double begin = now();
        EXPECT_EQ(Kr::Sleeper::getInstance().sleep(entry.seconds), entry.least > 0.)
            << entry.seconds;
        EXPECT_GE(now() - begin, entry.least - tick) << entry.seconds;
        EXPECT_LT(now() - begin, hang) << entry.seconds;
    }
    EXPECT_EQ(Kr::Sleeper::getInstance().getResolution(), 0.001);
}

/// Sleeps of any length last: what is more than one timer can do is not cut to that, and does not
/// wrap around. The threads are still asleep as the process ends.
TEST(Sleeping, HugeTimesDoNotReturn)
{
    static std::atomic<int> returned{0};
    static std::atomic<int> asleep{0};
    for (const double seconds : {5e6, 4294968., 1e300, std::numeric_limits<double>::infinity()})
        std::thread(
            [seconds]
            {
                Kr::Sleeper& sleeper = Kr::Sleeper::getInstance();
                ++asleep;
                sleeper.sleep(seconds);
                ++returned;
            })
            .detach();
    while (asleep != 4)
        Kr::Sleeper::getInstance().sleep(0.001);
    Kr::Sleeper::getInstance().sleep(0.05);
    EXPECT_EQ(returned, 0);
}

/// Each on an event of its own: none ends early by another's, and all wake.
TEST(Sleeping, HundredThreadsAtOnce)
{
    std::atomic<int> early{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 100; ++i)
        threads.emplace_back(
            [&early, i]
            {
                for (const double seconds : {0.001 * (1 + i % 7), 0.003})
                {
                    const double begin = now();
                    if (!Kr::Sleeper::getInstance().sleep(seconds) ||
                        now() - begin < seconds - tick)
                        ++early;
                }
            });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(early, 0);
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// By how much the runtime's sleep is too long on this machine at this moment, at the median.
double getPeersOvershoot()
{
    std::vector<double> late;
    for (int i = 0; i < 51; ++i)
    {
        const double begin = now();
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        late.push_back(now() - begin - 0.002);
    }
    return median(std::move(late));
}

/// By turns, so that the machine is as busy for the one as for the other. The tenth of the sleeps
/// that end soonest is compared: on a machine that has more to do than processors, the others wait
/// for one.
TEST(Sleeping, IsNotLaterThanTheRuntimes)
{
    const auto measure = [](std::vector<double>& late, auto sleep)
    {
        const double begin = now();
        sleep();
        late.push_back(now() - begin - 0.002);
    };
    std::vector<double> ours, theirs;
    for (int i = 0; i < 100; ++i)
    {
        measure(ours, [] { Kr::Sleeper::getInstance().sleep(0.002); });
        measure(theirs, [] { std::this_thread::sleep_for(std::chrono::milliseconds(2)); });
    }
    std::sort(ours.begin(), ours.end());
    std::sort(theirs.begin(), theirs.end());
    EXPECT_LE(ours[10], theirs[10] + tick);
}

/// Twice as many threads as processors, which do nothing but keep them busy.
class Load
{
public:
    Load()
    {
        for (unsigned int i = 0; i < 2 * std::max(1U, std::thread::hardware_concurrency()); ++i)
            _threads.emplace_back(
                [this]
                {
                    while (!_isDone)
                        continue;
                });
    }
    ~Load()
    {
        _isDone = true;
        for (std::thread& thread : _threads)
            thread.join();
    }

private:
    std::atomic<bool> _isDone{false};
    std::vector<std::thread> _threads;
};

TEST(Sleeping, LoadMakesNothingEarlyAndBeatsAreNotLost)
{
    const Load load;
    const Kr::ObjPtr<Kr::PeriodicTimer> timer(Kr::PeriodicTimer::create(0.005));
    const double begin = now();
    timer->start();
    for (long long beat = 0, last = 0; beat < 40; last = beat)
    {
        const double before = now();
        EXPECT_TRUE(Kr::Sleeper::getInstance().sleep(0.003));
        EXPECT_GE(now() - before, 0.003 - tick);
        beat = timer->waitNextBeat();
        const double after = now();
        EXPECT_GT(beat, last);
        EXPECT_LE(static_cast<double>(beat), (after - begin) / 0.005 + 0.5);
        ASSERT_LT(after - begin, hang);
    }
}

// Beating

TEST(PeriodicTimers, NameTheIntervalThatTheyCannotDo)
{
    const Kr::ObjPtr<Kr::PeriodicTimer> timer(Kr::PeriodicTimer::create(0.02));
    timer->start();
    for (const double interval : {0., -1., 0.0005, 1e7, std::nan("")})
    {
        const auto create = [interval] { Kr::PeriodicTimer::create(interval); };
        const auto change = [&timer, interval] { timer->setInterval(interval); };
        const std::string reason = reasonOf<Kr::ExInternalError>(create);
        EXPECT_EQ(reason.find("A periodic timer cannot beat every "), 0U) << reason;
        EXPECT_NE(reason.find("its interval is from 0.001 to "), std::string::npos) << reason;
        EXPECT_EQ(reasonOf<Kr::ExInternalError>(change), reason);
    }
    EXPECT_EQ(timer->getInterval(), 0.02);
    EXPECT_FALSE(timer->start()) << "it still runs";
}

TEST(PeriodicTimers, StartAndStopOnceAndCountFromTheStart)
{
    const Kr::ObjPtr<Kr::PeriodicTimer> timer(Kr::PeriodicTimer::create(0.01));
    EXPECT_EQ(timer->getCurrentCount(), 0);
    EXPECT_FALSE(timer->stop());
    EXPECT_TRUE(timer->start());
    EXPECT_FALSE(timer->start());
    while (timer->getCurrentCount() < 5)
        timer->waitNextBeat();
    EXPECT_EQ(timer->setInterval(10.), 10.);
    EXPECT_EQ(timer->getCurrentCount(), 0) << "counts anew";
    EXPECT_TRUE(timer->stop());
    EXPECT_FALSE(timer->stop());
    EXPECT_EQ(timer->getInterval(), 10.);
}

/// However late a thread comes to wait, the beats stay multiples of the interval after the start:
/// most waits end soon after one, as far as the machine wakes threads in time at all.
TEST(PeriodicTimers, DoNotDrift)
{
    constexpr double interval = 0.01;
    constexpr double early = 0.001; // some systems' timers end within the millisecond before
    const Kr::ObjPtr<Kr::PeriodicTimer> timer(Kr::PeriodicTimer::create(interval));
    timer->start();
    const double begin = now() - early;
    std::vector<double> late;
    long long last = 0;
    for (int i = 0; i < 40; ++i)
    {
        if (i % 2 == 0)
            Kr::Sleeper::getInstance().sleep(0.014);
        const long long beat = timer->waitNextBeat();
        EXPECT_GE(beat, last);
        last = beat;
        late.push_back(std::fmod(now() - begin, interval));
    }
    EXPECT_GE(last, 58) << "every second wait misses a beat";
    EXPECT_LT(median(std::move(late)), early + 0.25 * interval + getPeersOvershoot());
}

/// A timer that says when it beats.
class FakeTimer : public Kr::PeriodicTimer
{
public:
    FakeTimer(double interval, std::vector<double> waits)
        : PeriodicTimer(interval)
        , _waits(std::move(waits))
    {
    }
    bool start() override { return ++_started == 1; }
    bool stop() override { return ++_stopped == 1; }
    long long waitNextBeat() override
    {
        Kr::Sleeper::getInstance().sleep(
            _waits[_round < _waits.size() ? _round : _waits.size() - 1]);
        return static_cast<long long>(++_round);
    }
    double setInterval(double interval) override { return interval; }

    int _started = 0;
    int _stopped = 0;
    std::size_t _round = 0;

private:
    const std::vector<double> _waits;
};

TEST(PeriodicTimers, SelfTestLooksForOneBeatOnTimeInHalfASecond)
{
    FakeTimer late(10., {0.02, 0.02, 0.47}); // never near its interval
    EXPECT_FALSE(Kr::waitBeating(late));
    EXPECT_EQ(late._round, 3U);
    EXPECT_EQ(late._stopped, 1);

    FakeTimer slow(0.6, {0.6}); // on time, but too late for the test: kept so
    EXPECT_FALSE(Kr::waitBeating(slow));
    EXPECT_EQ(slow._round, 1U);

    FakeTimer running(0.1, {0.1});
    running.start();
    Kr::waitBeating(running);
    EXPECT_EQ(running._stopped, 0) << "it was running before";

    bool isConfirmed = false; // a busy machine may be late, but not each time
    for (int i = 0; i < 20 && !isConfirmed; ++i)
    {
        FakeTimer irregular(0.03, {0.001, 0.01, 0.03});
        isConfirmed = Kr::waitBeating(irregular) && irregular._round == 3;
    }
    EXPECT_TRUE(isConfirmed);
}

/// Who waits is let go by a stop and by the end of the timer, also when they come just before the
/// wait, and goes on through a change of the interval.
TEST(PeriodicTimers, LetGoWhoWaits)
{
    for (int round = 0; round < 50; ++round)
    {
        auto* const timer = Kr::PeriodicTimer::create(0.01).release();
        timer->setInterval(20.); // no beat comes
        std::atomic<bool> waits{false};
        timer->start();
        std::thread waiter(
            [&]
            {
                waits = true;
                EXPECT_EQ(timer->waitNextBeat(), 0);
            });
        while (!waits)
            std::this_thread::yield();
        Kr::Sleeper::getInstance().sleep(0.001);
        timer->setInterval(30.);
        if (round % 2 == 0)
        {
            timer->stop();
            waiter.join();
        }
        delete timer;
        if (waiter.joinable())
            waiter.join();
    }
}

TEST(PeriodicTimers, ThreadsMayStartStopAndChangeWhileOneWaits)
{
    const Kr::ObjPtr<Kr::PeriodicTimer> timer(Kr::PeriodicTimer::create(0.002));
    std::atomic<bool> isDone{false};
    std::thread waiter(
        [&]
        {
            while (!isDone)
                timer->waitNextBeat();
        });
    std::vector<std::thread> others;
    for (int i = 0; i < 4; ++i)
        others.emplace_back(
            [&timer, i]
            {
                for (int round = 0; round < 200; ++round)
                {
                    timer->start();
                    timer->setInterval(0.001 * (1 + (round + i) % 5));
                    EXPECT_GE(timer->getCurrentCount(), 0);
                    if (round % 3 == 0)
                        timer->stop();
                }
            });
    for (std::thread& thread : others)
        thread.join();
    isDone = true;
    timer->start();
    waiter.join();
    EXPECT_TRUE(timer->stop());
}

} // namespace
