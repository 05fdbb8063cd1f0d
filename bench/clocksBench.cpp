// Taking a time stamp and measuring an interval, beside the other ways of doing so.

#include <base/dtRefTime.h>
#include <base/hwCounter.h>
#include <base/hwIntervalTimer.h>
#include <base/todIntervalTimer.h>

#include <benchmark/benchmark.h>

#include <chrono>
#include <time.h>
#if defined(__x86_64__) || defined(__i386__)
#include <x86intrin.h>
#endif

namespace
{

void stampHwCounter(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(Kr::HwCounter::timeStamp());
}
BENCHMARK(stampHwCounter);

void stampReferenceTime(benchmark::State& state)
{
    const Kr::DtRefTimeFactory& clock = Kr::DtRefTimeFactory::getInstance();
    for (auto _ : state)
        benchmark::DoNotOptimize(clock.create());
}
BENCHMARK(stampReferenceTime);

void stampSteadyClock(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(std::chrono::steady_clock::now());
}
BENCHMARK(stampSteadyClock);

void stampClockGettime(benchmark::State& state)
{
    timespec now{};
    for (auto _ : state)
    {
        ::clock_gettime(CLOCK_MONOTONIC, &now);
        benchmark::DoNotOptimize(now);
    }
}
BENCHMARK(stampClockGettime);

#if defined(__x86_64__) || defined(__i386__)

void stampBareInstruction(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(__rdtsc());
}
BENCHMARK(stampBareInstruction);

/// The instruction after a fence, which waits for the loads before it.
void stampFencedInstruction(benchmark::State& state)
{
    for (auto _ : state)
    {
        _mm_lfence();
        benchmark::DoNotOptimize(__rdtsc());
    }
}
BENCHMARK(stampFencedInstruction);

#endif

void intervalHwIntervalTimer(benchmark::State& state)
{
    Kr::HwIntervalTimer timer;
    for (auto _ : state)
    {
        timer.start();
        timer.stop();
        benchmark::DoNotOptimize(timer.timeInterval());
    }
}
BENCHMARK(intervalHwIntervalTimer);

void intervalSteadyClock(benchmark::State& state)
{
    for (auto _ : state)
    {
        const auto start = std::chrono::steady_clock::now();
        const auto stop = std::chrono::steady_clock::now();
        benchmark::DoNotOptimize(std::chrono::duration<double>(stop - start).count());
    }
}
BENCHMARK(intervalSteadyClock);

void intervalTodIntervalTimer(benchmark::State& state)
{
    Kr::TodIntervalTimer timer;
    for (auto _ : state)
    {
        timer.start();
        timer.stop();
        benchmark::DoNotOptimize(timer.timeInterval());
    }
}
BENCHMARK(intervalTodIntervalTimer);

void intervalSystemClock(benchmark::State& state)
{
    for (auto _ : state)
    {
        const auto start = std::chrono::system_clock::now();
        const auto stop = std::chrono::system_clock::now();
        benchmark::DoNotOptimize(std::chrono::duration<double>(stop - start).count());
    }
}
BENCHMARK(intervalSystemClock);

} // namespace
