#pragma once

/// @file
/// Competitors that are timed in turns, so that what else the machine does meets them alike.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <numeric>
#include <random>
#include <vector>

struct Competitor
{
    const char* name;
    std::function<void()> run;
};

/// Each iteration lets all run once, in an order of its own. The counter with a competitor's name
/// is its median time in that unit.
/// @param tidyUp follows each run, and is not timed
inline void race(
    benchmark::State& state, benchmark::TimeUnit unit, const std::vector<Competitor>& competitors,
    const std::function<void()>& tidyUp = [] {})
{
    using Clock = std::chrono::steady_clock;
    static std::mt19937 random(1); // goes on, so that no repetition is as the one before
    std::vector<std::vector<double>> seconds(competitors.size());
    std::vector<std::size_t> order(competitors.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    for (auto _ : state)
    {
        std::shuffle(order.begin(), order.end(), random);
        for (const std::size_t i : order)
        {
            const Clock::time_point begin = Clock::now();
            competitors[i].run();
            seconds[i].push_back(std::chrono::duration<double>(Clock::now() - begin).count());
            tidyUp();
        }
    }
    for (std::size_t i = 0; i < competitors.size(); ++i)
    {
        const auto middle = seconds[i].begin() + static_cast<std::ptrdiff_t>(seconds[i].size() / 2);
        std::nth_element(seconds[i].begin(), middle, seconds[i].end());
        state.counters[competitors[i].name] = *middle * benchmark::GetTimeUnitMultiplier(unit);
    }
}
