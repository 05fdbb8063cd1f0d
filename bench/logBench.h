#pragma once

/// @file
/// What the benchmarks of logging share: the messages, and the timing of bursts of them.
///
/// "median_ns" is the figure to read: nanoseconds for one message or value, from the median burst.
/// The time column is the mean of whole bursts, with whatever interrupted them.

#include <base/hwCounter.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <random>
#include <type_traits>
#include <vector>

namespace LogBench
{

inline constexpr char constantText[] = "a message of just 32 characters."; // and its terminator
static_assert(sizeof constantText == 33);

/// Numbers as programs log them: up to a million, with some decimals.
inline const std::vector<double>& everydayNumbers()
{
    static const std::vector<double> numbers = []
    {
        std::mt19937 random(1);
        std::vector<double> made(512);
        for (double& number : made)
            number = std::exp(std::uniform_real_distribution<>(-7., 14.)(random));
        return made;
    }();
    return numbers;
}

inline double everydayNumber(int i)
{
    return everydayNumbers()[static_cast<std::size_t>(i) % 512];
}

struct Constant
{
    template <class Stream>
    static void write(Stream& stream, int)
    {
        stream << constantText;
    }
};

struct IntAndDouble
{
    template <class Stream>
    static void write(Stream& stream, int i)
    {
        stream << "cycle " << i << " took " << everydayNumber(i);
    }
};

/// The same messages as the peer's users write them.
template <class Message, class Logger>
void logToSpdlog(Logger& logger, int i)
{
    if constexpr (std::is_same_v<Message, Constant>)
        logger.info(constantText);
    else
        logger.info("cycle {} took {:f}", i, everydayNumber(i));
}

/// Times bursts of `produce(i)`; what `rest()` does after each is not timed.
template <class Produce, class Rest>
void measureBursts(benchmark::State& state, int burst, Produce produce, Rest rest)
{
    std::vector<double> times;
    for (auto _ : state)
    {
        const unsigned long long start = Kr::HwCounter::timeStamp();
        for (int i = 0; i < burst; ++i)
            produce(i);
        const double seconds = Kr::HwCounter::seconds(start, Kr::HwCounter::timeStamp());
        state.SetIterationTime(seconds);
        times.push_back(seconds);
        rest();
    }
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    state.counters["median_ns"] =
        benchmark::Counter(*middle / burst * 1e9, benchmark::Counter::kAvgThreads);
}

} // namespace LogBench
