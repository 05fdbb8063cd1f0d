// How late sleeps and beats come, beside the system's own ways, and what a setting of the heap
// manager costs. The times are overshoots; the counters give their median, 99th percentile and
// maximum in microseconds.

#include <base/hmHeapMgr.h>
#include <base/inInitGuard.h>
#include <base/periodicTimer.h>
#include <base/sleeper.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>
#include <thread>
#include <vector>

#include <sys/timerfd.h>
#include <time.h>
#include <unistd.h>

namespace
{

constexpr double microseconds = 1e6;

Kr::Sleeper& getSleeper()
{
    static int count = 0;
    static const char* const* arguments = nullptr;
    static const Kr::InInitGuard library(count, arguments);
    return Kr::Sleeper::getInstance();
}

timespec toTimespec(double seconds)
{
    const double whole = std::floor(seconds);
    return {static_cast<time_t>(whole), static_cast<long>((seconds - whole) * 1e9)};
}

double monotonicNow()
{
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double at(const std::vector<double>& sorted, double part)
{
    return sorted[static_cast<std::size_t>(part * static_cast<double>(sorted.size() - 1))];
}

void report(benchmark::State& state, std::vector<double> late)
{
    std::sort(late.begin(), late.end());
    state.counters["median"] = at(late, 0.5) * microseconds;
    state.counters["p99"] = at(late, 0.99) * microseconds;
    state.counters["max"] = late.back() * microseconds;
}

// Sleeps

template <class Sleep>
void measure(benchmark::State& state, Sleep sleep)
{
    const double seconds = static_cast<double>(state.range(0)) / 1000.;
    getSleeper();
    std::vector<double> late;
    for (auto _ : state)
    {
        const double begin = monotonicNow();
        sleep(seconds);
        late.push_back(monotonicNow() - begin - seconds);
        state.SetIterationTime(late.back());
    }
    report(state, std::move(late));
}

void sleepLibrary(benchmark::State& state)
{
    measure(state, [](double seconds) { Kr::Sleeper::getInstance().sleep(seconds); });
}

void sleepFor(benchmark::State& state)
{
    measure(state, [](double seconds)
            { std::this_thread::sleep_for(std::chrono::duration<double>(seconds)); });
}

void sleepUntilDeadline(benchmark::State& state)
{
    measure(state,
            [](double seconds)
            {
                const timespec deadline = toTimespec(monotonicNow() + seconds);
                ::clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &deadline, nullptr);
            });
}

void milliseconds(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Arg(1)->Arg(2)->Arg(5)->Arg(20)->Iterations(200)->UseManualTime()->Unit(
        benchmark::kMicrosecond);
}

BENCHMARK(sleepLibrary)->Apply(milliseconds);
BENCHMARK(sleepFor)->Apply(milliseconds);
BENCHMARK(sleepUntilDeadline)->Apply(milliseconds);

// Beats of 10 ms for 10 s

constexpr double interval = 0.01;
constexpr int beats = 1000;

/// `wait` waits for a beat and returns its number. The lateness is against the start and multiples
/// of the interval; the jitter is its standard deviation, the drift how much later the last tenth
/// comes than the first.
template <class Wait>
void measureBeats(benchmark::State& state, double begin, Wait wait)
{
    std::vector<double> late;
    for (long long beat = 0; beat < beats;)
    {
        beat = wait();
        late.push_back(monotonicNow() - begin - static_cast<double>(beat) * interval);
    }
    const auto mean = [](auto first, auto last)
    { return std::accumulate(first, last, 0.) / static_cast<double>(last - first); };
    const auto tenth = static_cast<std::ptrdiff_t>(late.size() / 10);
    const double average = mean(late.begin(), late.end());
    double squares = 0.;
    for (const double lateness : late)
        squares += (lateness - average) * (lateness - average);
    state.SetIterationTime(average);
    state.counters["jitter"] = std::sqrt(squares / static_cast<double>(late.size())) * microseconds;
    state.counters["drift"] =
        (mean(late.end() - tenth, late.end()) - mean(late.begin(), late.begin() + tenth)) *
        microseconds;
    state.counters["beats"] = static_cast<double>(late.size());
    report(state, std::move(late));
}

void beatLibrary(benchmark::State& state)
{
    getSleeper();
    for (auto _ : state)
    {
        const Kr::ObjPtr<Kr::PeriodicTimer> timer(Kr::PeriodicTimer::create(interval));
        const double begin = monotonicNow();
        timer->start();
        measureBeats(state, begin, [&timer] { return timer->waitNextBeat(); });
    }
}

void beatTimerfd(benchmark::State& state)
{
    for (auto _ : state)
    {
        const int timer = ::timerfd_create(CLOCK_MONOTONIC, 0);
        const double begin = monotonicNow();
        const itimerspec setting{toTimespec(interval), toTimespec(begin + interval)};
        ::timerfd_settime(timer, TFD_TIMER_ABSTIME, &setting, nullptr);
        long long beat = 0;
        measureBeats(state, begin,
                     [timer, &beat]
                     {
                         std::uint64_t passed = 0;
                         if (::read(timer, &passed, sizeof passed) != sizeof passed)
                             std::abort();
                         beat += static_cast<long long>(passed);
                         return beat;
                     });
        ::close(timer);
    }
}

BENCHMARK(beatLibrary)->Iterations(1)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(beatTimerfd)->Iterations(1)->UseManualTime()->Unit(benchmark::kMicrosecond);

// Settings

void readHeapSetting(benchmark::State& state)
{
    getSleeper();
    for (auto _ : state)
        benchmark::DoNotOptimize(Kr::HmHeapMgr::getInstance().getDumpLeaks());
}
BENCHMARK(readHeapSetting);

void readEnvironment(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(std::getenv("KR_HEAP_DUMP_LEAKS"));
}
BENCHMARK(readEnvironment);

} // namespace
