// What a message costs the thread that logs it.
//
// Producers are measured in bursts of 500 that fit the ring; each burst is drained outside the
// timing.

#include "logBench.h"

#include <base/hwCounter.h>
#include <base/lgQueue.h>

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <glog/logging.h>
#include <spdlog/async.h>
#include <spdlog/sinks/base_sink.h>

#include <atomic>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <random>
#include <sstream>
#include <thread>
#include <vector>

namespace
{

using LogBench::Constant;
using LogBench::constantText;
using LogBench::everydayNumbers;
using LogBench::IntAndDouble;

constexpr int burst = 500;

template <class Produce, class Drain>
void measure(benchmark::State& state, Produce produce, Drain drain)
{
    LogBench::measureBursts(state, burst, produce, drain);
}

void manual(benchmark::internal::Benchmark* bench)
{
    bench->UseManualTime()->MinTime(0.1);
}

// Messages

void BM_timeStamp(benchmark::State& state)
{
    measure(
        state, [](int) { benchmark::DoNotOptimize(Kr::HwCounter::timeStamp()); }, [] {});
}
BENCHMARK(BM_timeStamp)->Apply(manual);

/// The least that such a message can cost: a time stamp, a copy of its text, a release store.
void BM_floor(benchmark::State& state)
{
    std::vector<char> texts(32768);
    std::vector<std::uint64_t> stamps(1024);
    std::atomic<unsigned int> end{0};
    measure(
        state,
        [&](int)
        {
            const unsigned int at = end.load(std::memory_order_relaxed);
            stamps[at] = Kr::HwCounter::timeStamp();
            std::memcpy(texts.data() + at * 33, constantText, 33);
            end.store(at + 1, std::memory_order_release);
        },
        [&]
        {
            benchmark::DoNotOptimize(texts.data());
            benchmark::DoNotOptimize(stamps.data());
            end = 0;
        });
}
BENCHMARK(BM_floor)->Apply(manual)->Threads(1)->Threads(4);

template <class Message>
void BM_LgQueue(benchmark::State& state)
{
    Kr::LgQueue queue(0);
    std::vector<char> buffer(Kr::LgStream::getMaxSize() + 1);
    int messages = 0;
    measure(
        state,
        [&](int i)
        {
            if (!queue.reserveEntry(Kr::LgTypes::Informational))
                return;
            Message::write(queue.getStream(), i);
            queue.addEntry();
        },
        [&]
        {
            for (; !queue.isEmpty(); queue.removeEntry(), ++messages)
                if (!queue.readEntry().isOverflowEntry())
                    queue.getStream() >> buffer.data();
        });
    if (messages != state.iterations() * burst)
        state.SkipWithError("messages were lost");
}
BENCHMARK_TEMPLATE(BM_LgQueue, Constant)->Apply(manual)->Threads(1)->Threads(4);
BENCHMARK_TEMPLATE(BM_LgQueue, IntAndDouble)->Apply(manual)->Threads(1)->Threads(4);

class NullSink : public spdlog::sinks::base_sink<spdlog::details::null_mutex>
{
    void sink_it_(const spdlog::details::log_msg&) override {}
    void flush_() override {}
};

struct Spdlog
{
    std::shared_ptr<spdlog::details::thread_pool> pool =
        std::make_shared<spdlog::details::thread_pool>(8192, 1);
    std::shared_ptr<spdlog::async_logger> logger = std::make_shared<spdlog::async_logger>(
        "peer", std::make_shared<NullSink>(), pool, spdlog::async_overflow_policy::overrun_oldest);
};

template <class Message>
void BM_spdlogAsync(benchmark::State& state)
{
    static Spdlog spdlog; // one queue for all threads: that is its design
    measure(
        state, [](int i) { LogBench::logToSpdlog<Message>(*spdlog.logger, i); },
        []
        {
            while (spdlog.pool->queue_size() != 0)
                std::this_thread::yield();
        });
}
BENCHMARK_TEMPLATE(BM_spdlogAsync, Constant)->Apply(manual)->Threads(1)->Threads(4);
BENCHMARK_TEMPLATE(BM_spdlogAsync, IntAndDouble)->Apply(manual)->Threads(1)->Threads(4);

struct GlogSink : google::LogSink
{
    void send(google::LogSeverity, const char*, const char*, int, const struct ::tm*, const char*,
              std::size_t) override
    {
    }
};

template <class Message>
void BM_glog(benchmark::State& state)
{
    GlogSink sink;
    measure(
        state,
        [&](int i)
        {
            google::LogMessage message(__FILE__, __LINE__, google::GLOG_INFO, &sink, false);
            message.stream() << std::fixed;
            Message::write(message.stream(), i);
        },
        [] {});
}
BENCHMARK_TEMPLATE(BM_glog, Constant)->Apply(manual)->Threads(1)->Threads(4);
BENCHMARK_TEMPLATE(BM_glog, IntAndDouble)->Apply(manual)->Threads(1)->Threads(4);

/// Only makes the text.
template <class Message>
void BM_ostringstream(benchmark::State& state)
{
    std::ostringstream os;
    os << std::fixed;
    measure(
        state,
        [&](int i)
        {
            os.str(std::string());
            Message::write(os, i);
        },
        [] {});
}
BENCHMARK_TEMPLATE(BM_ostringstream, Constant)->Apply(manual);
BENCHMARK_TEMPLATE(BM_ostringstream, IntAndDouble)->Apply(manual);

// Values

enum Kind
{
    Ints,
    EverydayDoubles,
    AnyDoubles
};

template <Kind kind>
auto makeValues()
{
    std::mt19937_64 random(2);
    std::vector<std::conditional_t<kind == Ints, int, double>> values;
    for (const double number : everydayNumbers())
        if constexpr (kind == Ints)
            values.push_back(static_cast<int>(number));
        else if constexpr (kind == EverydayDoubles)
            values.push_back(number);
        else
            values.push_back(std::ldexp(number, static_cast<int>(random() % 100)));
    return values;
}

template <Kind kind>
void BM_valueLgStream(benchmark::State& state)
{
    const auto values = makeValues<kind>();
    Kr::LgStream stream;
    std::vector<char> buffer(Kr::LgStream::getMaxSize() + 1);
    measure(
        state, [&](int i) { stream << values[static_cast<std::size_t>(i)]; },
        [&]
        {
            stream << Kr::ends;
            if (stream.hasOverflowed())
                state.SkipWithError("texts were cut");
            stream >> buffer.data();
        });
}

/// The peers append to a plain buffer. `append(to, value)` returns the new end.
template <Kind kind, class Append>
void measureAppend(benchmark::State& state, Append append)
{
    const auto values = makeValues<kind>();
    std::vector<char> buffer(burst * 400);
    char* to = buffer.data();
    measure(
        state, [&](int i) { to = append(to, values[static_cast<std::size_t>(i)]); },
        [&]
        {
            benchmark::DoNotOptimize(buffer.data());
            benchmark::ClobberMemory();
            to = buffer.data();
        });
}

template <Kind kind>
void BM_valueSnprintf(benchmark::State& state)
{
    measureAppend<kind>(state, [](char* to, auto value)
                        { return to + std::snprintf(to, 400, kind == Ints ? "%d" : "%f", value); });
}

template <Kind kind>
void BM_valueToChars(benchmark::State& state)
{
    measureAppend<kind>(
        state,
        [](char* to, auto value)
        {
            if constexpr (kind == Ints)
                return std::to_chars(to, to + 400, value).ptr;
            else
                return std::to_chars(to, to + 400, value, std::chars_format::fixed, 6).ptr;
        });
}

template <Kind kind>
void BM_valueFmt(benchmark::State& state)
{
    measureAppend<kind>(state,
                        [](char* to, auto value)
                        {
                            if constexpr (kind == Ints)
                                return fmt::format_to(to, FMT_STRING("{}"), value);
                            else
                                return fmt::format_to(to, FMT_STRING("{:f}"), value);
                        });
}

#define VALUE_BENCHMARKS(kind)                                                                     \
    BENCHMARK_TEMPLATE(BM_valueLgStream, kind)->Apply(manual);                                     \
    BENCHMARK_TEMPLATE(BM_valueSnprintf, kind)->Apply(manual);                                     \
    BENCHMARK_TEMPLATE(BM_valueToChars, kind)->Apply(manual);                                      \
    BENCHMARK_TEMPLATE(BM_valueFmt, kind)->Apply(manual)
VALUE_BENCHMARKS(Ints);
VALUE_BENCHMARKS(EverydayDoubles);
VALUE_BENCHMARKS(AnyDoubles);

} // namespace
