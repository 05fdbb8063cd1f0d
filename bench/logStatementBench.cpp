// What a whole statement of the log costs the thread that makes it, as programs make them: bursts
// of 256, with 4 ms behind each in which the backend takes them to its file; and how many messages
// are lost, by the rate at which they come.

#include "logBench.h"
#include "race.h"

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
#include <type_traits>
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

template <class Message>
void writeTo(Kr::LgQueue& queue, int i)
{
    if (!queue.reserveEntry(Kr::LgTypes::Informational))
        return;
    Message::write(queue.getStream(), i);
    queue.addEntry();
}

template <class Message>
void logTo(const Kr::LgMinorGroup& group, int i)
{
    if constexpr (std::is_same_v<Message, Constant>)
        KR_LOG(group, Informational) << constantText;
    else
        KR_LOG(group, Informational) << "cycle " << i << " took " << everydayNumber(i);
}

/// A queue that another thread drains once a millisecond, and what it takes goes nowhere.
class DrainedQueue
{
public:
    DrainedQueue()
        : queue(0)
        , _reader([this] { drain(); })
    {
    }
    DrainedQueue(const DrainedQueue&) = delete;
    DrainedQueue& operator=(const DrainedQueue&) = delete;
    ~DrainedQueue()
    {
        _isStopping = true;
        _reader.join();
    }

    Kr::LgQueue queue;

private:
    void drain()
    {
        std::vector<char> buffer(Kr::LgStream::getMaxSize() + 1);
        while (!_isStopping || !queue.isEmpty())
        {
            for (; !queue.isEmpty(); queue.removeEntry())
                if (!queue.readEntry().isOverflowEntry())
                    queue.getStream() >> buffer.data();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    std::atomic<bool> _isStopping{false};
    std::thread _reader;
};

/// The logger of the peer, with a file of its own.
struct Peer
{
    const TemporaryFolder folder;
    const std::shared_ptr<spdlog::details::thread_pool> pool =
        std::make_shared<spdlog::details::thread_pool>(8192, 1);
    const std::shared_ptr<spdlog::async_logger> logger = std::make_shared<spdlog::async_logger>(
        "peer", std::make_shared<spdlog::sinks::basic_file_sink_st>(folder.path + "/peer.log"),
        pool, spdlog::async_overflow_policy::overrun_oldest);
};

enum class Queues
{
    memory,
    file ///< they survive a kill of the process
};

/// Bursts in turns; the counters are nanoseconds for each message, from the median burst.
template <Queues queues, class Message>
void BM_statement(benchmark::State& state)
{
    const Logger logger(queues == Queues::file);
    DrainedQueue alone;
    Kr::LgQueue& own = *Kr::LgLog::getQueue(); // into which the statements go, too
    const Peer peer;
    const auto repeat = [](auto produce)
    {
        return [produce]
        {
            for (int i = 0; i < burst; ++i)
                produce(i);
        };
    };
    race(state, benchmark::kNanosecond,
         {{"queue", repeat([&](int i) { writeTo<Message>(alone.queue, i); })},
          {"queueOfLogger", repeat([&](int i) { writeTo<Message>(own, i); })},
          {"statement", repeat([&](int i) { logTo<Message>(*logger.group, i); })},
          {"spdlog", repeat([&](int i) { LogBench::logToSpdlog<Message>(*peer.logger, i); })}},
         [] { std::this_thread::sleep_for(pauseBehindBurst); });
    for (auto& counter : state.counters)
        counter.second.value /= burst;
    if (Kr::LgLog::getLostCount() != 0)
        state.SkipWithError("messages were lost");
}
BENCHMARK_TEMPLATE(BM_statement, Queues::memory, Constant)->Iterations(200);
BENCHMARK_TEMPLATE(BM_statement, Queues::memory, IntAndDouble)->Iterations(200);
BENCHMARK_TEMPLATE(BM_statement, Queues::file, Constant)->Iterations(200);
BENCHMARK_TEMPLATE(BM_statement, Queues::file, IntAndDouble)->Iterations(200);

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
