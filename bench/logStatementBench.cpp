// What a whole statement of the log costs the thread that makes it, as programs make them: bursts
// of 256, with 4 ms behind each in which the backend takes them to its file; and how many messages
// are lost, by the rate at which they come.

#include "logBench.h"

#include <base/hwCounter.h>
#include <base/log.h>
#include <base/osEnv.h>

#include <benchmark/benchmark.h>

#include <spdlog/async.h>
#include <spdlog/sinks/basic_file_sink.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace
{

using LogBench::Constant;
using LogBench::constantText;
using LogBench::everydayNumber;
using LogBench::IntAndDouble;

constexpr int burst = 256;
constexpr std::chrono::milliseconds pauseBehindBurst(4);

/// A folder among the temporary ones that goes away.
struct TemporaryFolder
{
    TemporaryFolder()
        : path((std::filesystem::temp_directory_path() /
                ("krbase-bench-" + std::to_string(std::random_device()())))
                   .string())
    {
        std::filesystem::create_directories(path);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder()
    {
        std::error_code error;
        std::filesystem::remove_all(path, error);
    }

    const std::string path;
};

/// The logger, with its files in a folder of their own.
class Logger
{
public:
    /// @param survives whether the queues outlive the process
    explicit Logger(bool survives = false)
    {
        Kr::OsEnv::putVariable(survives ? "KR_LOG_SURVIVE=on" : "KR_LOG_SURVIVE=");
        Kr::OsEnv::putVariable(("KR_LOG_DIR=" + _folder.path).c_str());
        Kr::OsEnv::putVariable("KR_LOG_DEFAULT_LEVEL=Informational");
        Kr::LgLog::init();
        group = std::make_unique<Kr::LgMinorGroup>(Kr::LgMajorGroup::getInstanceForName("Bench"),
                                                   "Statement");
    }
    Logger(const Logger&) = delete;
    Logger& operator=(const Logger&) = delete;
    ~Logger()
    {
        group.reset();
        Kr::LgLog::destroy();
    }

    std::unique_ptr<Kr::LgMinorGroup> group;

private:
    const TemporaryFolder _folder;
};

template <class Produce>
void measure(benchmark::State& state, Produce produce)
{
    LogBench::measureBursts(state, burst, produce,
                            [] { std::this_thread::sleep_for(pauseBehindBurst); });
}

void manual(benchmark::internal::Benchmark* bench)
{
    bench->UseManualTime()->Iterations(200);
}

template <class Message>
void writeTo(Kr::LgQueue& queue, int i)
{
    if (!queue.reserveEntry(Kr::LgTypes::Informational))
        return;
    Message::write(queue.getStream(), i);
    queue.addEntry();
}

/// The queue alone, which another thread drains once a millisecond.
template <class Message>
void BM_LgQueue(benchmark::State& state)
{
    Kr::LgQueue queue(0);
    std::atomic<bool> isStopping{false};
    std::thread reader(
        [&]
        {
            std::vector<char> buffer(Kr::LgStream::getMaxSize() + 1);
            while (!isStopping || !queue.isEmpty())
            {
                for (; !queue.isEmpty(); queue.removeEntry())
                    if (!queue.readEntry().isOverflowEntry())
                        queue.getStream() >> buffer.data();
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
        });
    measure(state, [&queue](int i) { writeTo<Message>(queue, i); });
    isStopping = true;
    reader.join();
}
BENCHMARK_TEMPLATE(BM_LgQueue, Constant)->Apply(manual);
BENCHMARK_TEMPLATE(BM_LgQueue, IntAndDouble)->Apply(manual);

/// The queue alone, which the logger drains to its file as it does for statements.
template <class Message>
void BM_queueOfLogger(benchmark::State& state)
{
    const Logger logger;
    Kr::LgQueue& queue = *Kr::LgLog::getQueue();
    measure(state, [&queue](int i) { writeTo<Message>(queue, i); });
}
BENCHMARK_TEMPLATE(BM_queueOfLogger, Constant)->Apply(manual);
BENCHMARK_TEMPLATE(BM_queueOfLogger, IntAndDouble)->Apply(manual);

enum class Queues
{
    memory,
    file ///< they survive a kill of the process
};

template <Queues queues>
void BM_statementConstant(benchmark::State& state)
{
    const Logger logger(queues == Queues::file);
    measure(state, [&group = *logger.group](int) { KR_LOG(group, Informational) << constantText; });
    if (Kr::LgLog::getLostCount() != 0)
        state.SkipWithError("messages were lost");
}
BENCHMARK_TEMPLATE(BM_statementConstant, Queues::memory)->Apply(manual);
BENCHMARK_TEMPLATE(BM_statementConstant, Queues::file)->Apply(manual);

template <Queues queues>
void BM_statementIntAndDouble(benchmark::State& state)
{
    const Logger logger(queues == Queues::file);
    measure(state, [&group = *logger.group](int i)
            { KR_LOG(group, Informational) << "cycle " << i << " took " << everydayNumber(i); });
    if (Kr::LgLog::getLostCount() != 0)
        state.SkipWithError("messages were lost");
}
BENCHMARK_TEMPLATE(BM_statementIntAndDouble, Queues::memory)->Apply(manual);
BENCHMARK_TEMPLATE(BM_statementIntAndDouble, Queues::file)->Apply(manual);

template <class Message>
void BM_spdlogAsync(benchmark::State& state)
{
    const TemporaryFolder folder;
    const auto pool = std::make_shared<spdlog::details::thread_pool>(8192, 1);
    const auto logger = std::make_shared<spdlog::async_logger>(
        "peer", std::make_shared<spdlog::sinks::basic_file_sink_st>(folder.path + "/peer.log"),
        pool, spdlog::async_overflow_policy::overrun_oldest);
    measure(state, [&](int i) { LogBench::logToSpdlog<Message>(*logger, i); });
}
BENCHMARK_TEMPLATE(BM_spdlogAsync, Constant)->Apply(manual);
BENCHMARK_TEMPLATE(BM_spdlogAsync, IntAndDouble)->Apply(manual);

/// One thread logs messages a fixed time apart; "lost" is how many of them.
/// @param state its first argument: how many; its second: nanoseconds from one to the next
void BM_loss(benchmark::State& state)
{
    const auto messages = static_cast<int>(state.range(0));
    const auto ticks = static_cast<unsigned long long>(static_cast<double>(state.range(1)) * 1e-9 *
                                                       Kr::HwCounter::getRateNumerator());
    double lost = 0;
    for (auto _ : state)
    {
        const Logger logger;
        const Kr::LgMinorGroup& group = *logger.group;
        KR_LOG(group, Informational) << "makes the queue";
        Kr::LgLog::flush();
        std::this_thread::sleep_for(std::chrono::milliseconds(50)); // until the reader is at rest
        const auto before = Kr::LgLog::getLostCount();
        unsigned long long next = Kr::HwCounter::timeStamp();
        for (int i = 0; i < messages; ++i, next += ticks)
        {
            while (Kr::HwCounter::timeStamp() < next)
            {
            }
            KR_LOG(group, Informational) << "cycle " << i << " took " << everydayNumber(i);
        }
        Kr::LgLog::flush();
        lost += static_cast<double>(Kr::LgLog::getLostCount() - before);
    }
    state.counters["lost"] = lost / static_cast<double>(state.iterations());
    state.counters["lost_percent"] =
        100 * lost / static_cast<double>(state.iterations()) / messages;
}
BENCHMARK(BM_loss)
    ->ArgNames({"messages", "ns_apart"})
    ->Args({1000, 0})
    ->Args({1500, 0})
    ->Args({60000, 0})
    ->Args({100000, 100})
    ->Args({100000, 250})
    ->Args({100000, 500})
    ->Args({100000, 1000})
    ->Args({100000, 2000})
    ->Args({100000, 5000})
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);

} // namespace
