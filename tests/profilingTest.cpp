// Timers, profilers, their histograms and their consolidation, on a stopwatch whose times are
// given.

#include "allocationCount.h"

#include <base/exBase.h>
#include <base/lgStream.h>
#include <base/profConsolidator.h>
#include <base/profCounters.h>
#include <base/profScope.h>
#include <base/profiler.imp>
#include <base/timer.imp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iomanip>
#include <limits>
#include <random>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace
{

using Kr::HwIntervalTimer;
using Kr::ProfConsolidator;
using Kr::ProfCycle;
using Kr::ProfHistogram;
using Kr::Profiler;
using Kr::ProfSpan;
using Kr::Timer;
using Kr::TodIntervalTimer;

/// Tells the time that the test has set.
class ScriptedStopwatch : public Kr::IntervalTimer
{
public:
    explicit ScriptedStopwatch(const char* name)
        : IntervalTimer(name)
    {
    }

    void start() override { _start = now; }
    void stop() override { _stop = now; }
    double timeInterval() const override { return _stop - _start; }
    double sinceStart() const override { return now - _start; }

    static inline double now = 0.;

private:
    double _start = 0.;
    double _stop = 0.;
};

using ScriptedProfiler = Profiler<ScriptedStopwatch>;

void measure(Kr::ProfilerBase& profiler, double seconds)
{
    profiler.start();
    ScriptedStopwatch::now += seconds;
    profiler.stop();
}

void runCycles(Kr::ProfilerBase& profiler, const std::vector<double>& times)
{
    for (double seconds : times)
    {
        measure(profiler, seconds);
        profiler.endCycle();
    }
}

TEST(Timer, addsUpSpansAndIncludesTheRunningOne)
{
    Timer<ScriptedStopwatch> timer("load");
    EXPECT_STREQ(timer.setName("draw"), "load");
    EXPECT_STREQ(timer.getName(), "draw");
    EXPECT_EQ(timer.getSeconds(), 0.);
    timer.start();
    ScriptedStopwatch::now += 2.;
    EXPECT_EQ(timer.getSeconds(), 2.);
    timer.stop();
    ScriptedStopwatch::now += 8.;
    EXPECT_EQ(timer.getSeconds(), 2.);
    timer.start();
    ScriptedStopwatch::now += 0.5;
    EXPECT_EQ(timer.getSeconds(), 2.5);
    timer.reset();
    EXPECT_EQ(timer.getSeconds(), 0.);
}

TEST(Profiler, hasStatisticsOfItsCycles)
{
    struct
    {
        const char* label;
        std::vector<double> times;
        double total, average, least, greatest, deviation;
    } const cases[] = {
        {"fresh", {}, 0, 0, 0, 0, 0},
        {"one cycle", {1.5}, 1.5, 1.5, 1.5, 1.5, 0},
        {"three cycles", {1, 2, 3}, 6, 2, 1, 3, 1},
        {"least last", {5, 1}, 6, 3, 1, 5, std::sqrt(8.)},
        {"time set back", {-1, -3}, -4, -2, -3, 0, std::sqrt(2.)}, // the greatest starts at 0
    };
    ScriptedProfiler profiler;
    EXPECT_STREQ(profiler.getName(), "anonymous");
    for (const auto& c : cases)
    {
        SCOPED_TRACE(c.label);
        profiler.reset();
        runCycles(profiler, c.times);
        EXPECT_EQ(profiler.cycles(), static_cast<int>(c.times.size()));
        EXPECT_EQ(profiler.totalTime(), c.total);
        EXPECT_EQ(profiler.averageTime(), c.average);
        EXPECT_EQ(profiler.minTime(), c.least);
        EXPECT_EQ(profiler.maxTime(), c.greatest);
        EXPECT_EQ(profiler.standardDeviation(), c.deviation);
    }
}

TEST(Profiler, makesACycleOfItsSpans)
{
    ScriptedProfiler profiler("frame");
    measure(profiler, 0.5);
    ScriptedStopwatch::now += 7.;
    measure(profiler, 0.5);
    EXPECT_EQ(profiler.currentCycleTime(), 1.);
    EXPECT_EQ(profiler.cycles(), 0);
    profiler.endCycle();
    EXPECT_EQ(profiler.currentCycleTime(), 0.);
    EXPECT_EQ(profiler.totalTime(), 1.);
    profiler.start();
    profiler.endCycle(); // without a stop it counts with time 0
    EXPECT_EQ(profiler.cycles(), 2);
    EXPECT_EQ(profiler.minTime(), 0.);
}

TEST(Profiler, writesItsTableAndLeavesTheStreamAsItWas)
{
    ScriptedProfiler profiler("frame");
    runCycles(profiler, {1, 2, 3});
    std::ostringstream os;
    os << std::setfill('*') << std::right << std::scientific << std::setw(30) << profiler;
    EXPECT_EQ(os.str(), "Profiler frame:\n"
                        "Nb of cycles:           3\n"
                        "Total time:             6.000000\n"
                        "Average time:           2.000000\n"
                        "Minimum time:           1.000000\n"
                        "Maximum time:           3.000000\n"
                        "Standard dev:           1.000000\n"
                        "\n");
    EXPECT_EQ(os.fill(), '*');
    EXPECT_EQ(os.width(), 30);
    EXPECT_EQ(os.flags() & std::ios::adjustfield, std::ios::right);
    EXPECT_EQ(os.flags() & std::ios::floatfield, std::ios::scientific);
}

/// What the log makes of a value.
template <class Value>
std::string getMessage(const Value& value)
{
    Kr::LgStream stream;
    stream << value << Kr::ends;
    std::string text(stream.getNextSize() + 1, '\0');
    stream >> text.data();
    return text.c_str();
}

TEST(Profiler, writesItsTableIntoAMessage)
{
    ScriptedProfiler profiler("frame");
    runCycles(profiler, {1, 2, 3});
    EXPECT_EQ(getMessage(profiler), "Profiler frame:\n"
                                    "        Nb of cycles:   3\n"
                                    "        Total time  :   6.000000000\n"
                                    "        Average time:   2.000000000\n"
                                    "        Minimum time:   1.000000000\n"
                                    "        Maximum time:   3.000000000\n"
                                    "        Standard dev:   1.000000000\n"
                                    "\n");
}

/// What comes behind the first that is found of a mark.
template <class Value>
std::string getTextBehind(const char* mark, const Value& value)
{
    std::ostringstream os;
    os << value;
    return os.str().substr(os.str().find(mark) + std::strlen(mark));
}

TEST(ProfCounters, standAtTheEndOfTheTables)
{
    const std::string path = R"(\System\System Up Time:)";
    Kr::ProfCounters counters;
    const Kr::PrCounter& upTime = counters.add(R"(\System\System Up Time)");
    ScriptedProfiler profiler("frame");
    EXPECT_EQ(profiler.setCounters(&counters), nullptr);
    EXPECT_EQ(getTextBehind("Standard dev:           0.000000\n", profiler),
              path + " nothing has been collected yet\n\n");
    counters.sample();
    const std::string value = getTextBehind(": ", upTime) + '\n';
    EXPECT_EQ(getTextBehind("Standard dev:           0.000000\n", ScriptedProfiler(profiler)),
              path + "\nNb of samples:          1\nAverage value:          " + value +
                  "Minimum value:          " + value + "Maximum value:          " + value + '\n');
    ProfConsolidator all;
    EXPECT_EQ(all.setCounters(&counters), nullptr);
    EXPECT_EQ(getTextBehind("Maximum time:           0.000000\n", all),
              getTextBehind("Standard dev:           0.000000\n", profiler));
    const std::string message = getMessage(profiler);
    EXPECT_EQ(message.substr(message.find("        \\")),
              "        " + path + "\n        Nb of samples:  1\n        Average value:  " + value +
                  "        Minimum value:  " + value + "        Maximum value:  " + value + '\n');
}

TEST(ProfCounters, haveStatisticsOfTheirSamples)
{
    Kr::ProfCounters counters;
    const Kr::PrCounter& upTime = counters.add(R"(\System\System Up Time)");
    counters.sample();
    const double first = upTime.getValue();
    while (upTime.getValue() == first)
        counters.sample();
    const auto statistics = counters.getStatistics(upTime);
    EXPECT_EQ(statistics.minimum, first);
    EXPECT_EQ(statistics.maximum, upTime.getValue());
    const double rest = static_cast<double>(statistics.samples - 1);
    EXPECT_NEAR(statistics.average, (first * rest + statistics.maximum) / (rest + 1), 1e-6);
    counters.reset();
    EXPECT_EQ(counters.getStatistics(upTime).samples, 0U);
    Kr::ProfCounters others(3600.);
    const Kr::PrCounter& counter = others.add(upTime.getPath());
    for (int i = 0; i < 3; ++i)
        others.sample();
    EXPECT_EQ(others.getStatistics(counter).samples, 1U);
    EXPECT_THROW((void)others.getStatistics(upTime), Kr::ExInternalError);
}

TEST(ProfConsolidator, mergesProfilers)
{
    ScriptedProfiler busy, idle;
    runCycles(busy, {1, 3});
    ProfConsolidator all;
    EXPECT_EQ(all.minTime(), 0.);
    EXPECT_EQ(all.averageTime(), 0.);
    all.consolidate(busy);
    EXPECT_EQ(all.minTime(), 1.);
    all.consolidate(idle);
    EXPECT_EQ(all.minTime(), 0.); // one that is idle pulls it down
    std::ostringstream os;
    os << std::setprecision(2) << ProfConsolidator(all);
    EXPECT_EQ(os.str(), "Profiler Consolidator:\n"
                        "Nb of cycles:           2\n"
                        "Total time:             4.00\n"
                        "Average time:           2.00\n"
                        "Minimum time:           0.00\n"
                        "Maximum time:           3.00\n"
                        "\n");
}

/// The nearest-rank percentile of sorted times.
double getPercentile(const std::vector<double>& sorted, double percent)
{
    const double rank = std::ceil(percent * static_cast<double>(sorted.size()) / 100.);
    return sorted[static_cast<std::size_t>(std::max(rank, 1.)) - 1];
}

TEST(ProfHistogram, tellsPercentilesWithinItsError)
{
    std::mt19937 random(3);
    // From nanoseconds to hours, evenly over the magnitudes.
    std::uniform_real_distribution<double> magnitude(-29.9, 16.9);
    ProfHistogram histogram, halves[2];
    std::vector<double> times(20001);
    for (std::size_t i = 0; i < times.size(); ++i)
    {
        times[i] = std::exp2(magnitude(random));
        histogram.add(times[i]);
        halves[i % 2].add(times[i]);
    }
    std::sort(times.begin(), times.end());
    halves[0].merge(halves[1]);
    EXPECT_EQ(halves[0].getCount(), times.size());
    for (double percent : {0., 0.001, 1., 25., 50., 75., 90., 99., 99.9, 99.99, 100.})
    {
        const double exact = getPercentile(times, percent);
        EXPECT_NEAR(histogram.getPercentile(percent), exact, exact / 64.) << percent;
        EXPECT_EQ(halves[0].getPercentile(percent), histogram.getPercentile(percent));
    }
    EXPECT_EQ(histogram.getPercentile(0.), times.front());
    EXPECT_EQ(histogram.getPercentile(100.), times.back());
}

TEST(ProfHistogram, countsTimesAtAndBeyondTheEndsOfItsRange)
{
    const double inf = std::numeric_limits<double>::infinity();
    const double first = std::exp2(-30.), end = std::exp2(17.);
    for (double edge : {first, first * 2, 1., end / 2, end})
        for (double seconds : {std::nextafter(edge, 0.), edge, std::nextafter(edge, inf)})
        {
            ProfHistogram histogram;
            for (int i = 0; i < 3; ++i)
                histogram.add(seconds);
            EXPECT_EQ(histogram.getPercentile(50.), seconds);
        }
    ProfHistogram histogram;
    for (double seconds : {-1., 0., 1e-300, 1., 1e9, inf, std::numeric_limits<double>::quiet_NaN()})
        histogram.add(seconds);
    EXPECT_EQ(histogram.getCount(), 7U);
    EXPECT_EQ(histogram.getMinimum(), -1.);
    EXPECT_EQ(histogram.getMaximum(), inf);
    EXPECT_NEAR(histogram.getPercentile(500. / 7.), 1.,
                1. / 64.); // NaN, -1, 0 and 1e-300 before it

    EXPECT_EQ(ProfHistogram().getPercentile(50.), 0.);
    EXPECT_EQ(ProfHistogram().getMaximum(), 0.);
    for (double percent : {-0.1, 100.1, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_THROW((void)histogram.getPercentile(percent), Kr::ExInternalError);
}

TEST(ProfHistogram, followsItsProfiler)
{
    ScriptedProfiler profiler("frame");
    runCycles(profiler, {9.});
    ProfHistogram histogram;
    EXPECT_EQ(profiler.setHistogram(&histogram), nullptr);
    for (int i = 1; i <= 100; ++i)
        runCycles(profiler, {i / 64.});
    EXPECT_EQ(histogram.getCount(), 100U);
    std::ostringstream os;
    os << histogram;
    EXPECT_EQ(os.str(), "Nb of times:            100\n"
                        "Minimum time:           0.015625\n"
                        "50 percent:             0.789062\n" // 50/64 is at a bucket's lower end
                        "90 percent:             1.421875\n"
                        "99 percent:             1.546875\n"
                        "99.9 percent:           1.562500\n"
                        "Maximum time:           1.562500\n"
                        "\n");
    profiler.reset();
    EXPECT_EQ(histogram.getCount(), 0U);
    EXPECT_EQ(profiler.setHistogram(nullptr), &histogram);
}

TEST(ProfScope, CountsSpansAndCancelsCyclesThatAnExceptionLeaves)
{
    Timer<ScriptedStopwatch> timer;
    ScriptedProfiler profiler;
    const auto work = [&](double seconds, bool fails)
    {
        const ProfSpan span(timer);
        const ProfCycle cycle(profiler);
        ScriptedStopwatch::now += seconds;
        if (fails)
            throw std::runtime_error("no frame");
    };
    work(2., false);
    EXPECT_THROW(work(1., true), std::runtime_error);
    EXPECT_EQ(profiler.currentCycleTime(), 0.);
    /// Works while an exception that began before it is under way.
    struct CleanUp
    {
        ~CleanUp() { _work(4., false); }
        const decltype(work)& _work;
    };
    try
    {
        const CleanUp cleanUp{work};
        throw std::runtime_error("cleaning up");
    }
    catch (const std::runtime_error&)
    {
    }
    EXPECT_EQ(timer.getSeconds(), 7.);
    EXPECT_EQ(profiler.cycles(), 2);
    EXPECT_EQ(profiler.minTime(), 2.);
    EXPECT_EQ(profiler.maxTime(), 4.);
}

template <class Stopwatch>
class RealProfiler : public testing::Test
{
};
using Stopwatches = testing::Types<HwIntervalTimer, TodIntervalTimer>;
TYPED_TEST_SUITE(RealProfiler, Stopwatches, );

TYPED_TEST(RealProfiler, measuresWithoutAllocating)
{
    Profiler<TypeParam> profiler("real");
    ProfHistogram histogram;
    profiler.setHistogram(&histogram);
    Timer<TypeParam> timer("real");
    const int before = getAllocationCount();
    {
        const ProfSpan span(timer);
        for (int i = 0; i < 1000; ++i)
            const ProfCycle cycle(profiler);
    }
    EXPECT_EQ(getAllocationCount(), before);
    // Parts are no longer than the whole, but for the reading of a clock that can be set.
    EXPECT_LE(profiler.totalTime(), timer.getSeconds() + 1e-9);
    EXPECT_EQ(profiler.cycles(), 1000);
    EXPECT_EQ(histogram.getCount(), 1000U);
    EXPECT_STREQ(profiler.getName(), "real");
}

} // namespace
