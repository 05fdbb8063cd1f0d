// A profiler's cycle beside the bare counter readings that it cannot do without.

#include <base/hwCounter.h>
#include <base/profiler.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>

namespace
{

using HwProfiler = Kr::Profiler<Kr::HwIntervalTimer>;

void runCycles(benchmark::State& state, Kr::ProfilerBase& profiler)
{
    for (auto _ : state)
    {
        profiler.start();
        profiler.stop();
        profiler.endCycle();
    }
    benchmark::DoNotOptimize(profiler.totalTime());
}

void BM_cycle(benchmark::State& state)
{
    HwProfiler profiler;
    runCycles(state, profiler);
}

void BM_cycle_with_histogram(benchmark::State& state)
{
    HwProfiler profiler;
    Kr::ProfHistogram histogram;
    profiler.setHistogram(&histogram);
    runCycles(state, profiler);
}

/// The floor: two readings and nothing else.
void BM_two_time_stamps(benchmark::State& state)
{
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(Kr::HwCounter::timeStamp());
        benchmark::DoNotOptimize(Kr::HwCounter::timeStamp());
    }
}

/// The same by hand on the standard clock: the sum of the times and its extremes.
void BM_steady_clock_by_hand(benchmark::State& state)
{
    using Seconds = std::chrono::duration<double>;
    Seconds total(0), least = Seconds::max(), greatest(0);
    double squares = 0.;
    for (auto _ : state)
    {
        const auto start = std::chrono::steady_clock::now();
        const Seconds time = std::chrono::steady_clock::now() - start;
        total += time;
        squares += time.count() * time.count();
        least = std::min(least, time);
        greatest = std::max(greatest, time);
    }
    benchmark::DoNotOptimize(total);
    benchmark::DoNotOptimize(squares);
    benchmark::DoNotOptimize(least);
    benchmark::DoNotOptimize(greatest);
}

BENCHMARK(BM_cycle);
BENCHMARK(BM_cycle_with_histogram);
BENCHMARK(BM_two_time_stamps);
BENCHMARK(BM_steady_clock_by_hand);

} // namespace
