// What it costs to take queued messages to a file: 1000 messages of 32 characters, formatted with
// time, level and thread, written and flushed. The queue is filled, and the peer's message is
// made, outside the timing.

#include <base/hwCounter.h>
#include <base/internal/log/lgColumnFormat.h>
#include <base/internal/log/lgJsonFormat.h>
#include <base/internal/log/lgOutputs.h>
#include <base/internal/log/lgReader.h>
#include <base/internal/log/lgRegistry.h>
#include <base/lgQueue.h>
#include <base/log.h>

#include <benchmark/benchmark.h>

#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

#include <filesystem>
#include <random>
#include <string>

namespace
{

constexpr int messages = 1000;
constexpr char text[] = "a message of 32 characters, yes.";

/// A file among the temporary ones that goes away.
struct TemporaryFile
{
    TemporaryFile()
        : path((std::filesystem::temp_directory_path() /
                ("krbase-bench-" + std::to_string(std::random_device()()) + ".log"))
                   .string())
    {
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile()
    {
        std::error_code error;
        std::filesystem::remove(path, error);
    }

    const std::string path;
};

void fill(Kr::LgQueue& queue)
{
    for (int i = 0; i < messages; ++i)
    {
        queue.reserveEntry(Kr::LgTypes::Warning);
        queue.getStream() << text;
        queue.addEntry();
    }
}

template <class Format>
void drain(benchmark::State& state)
{
    const TemporaryFile file;
    Kr::LgFileSettings settings;
    settings.path = file.path;
    const Kr::LgClock clock;
    Format format(clock, true);
    Kr::LgRegistry queues;
    Kr::LgOutputs outputs;
    Kr::LgReader reader(queues, outputs);
    const auto queue = std::make_shared<Kr::LgQueue>(1);
    queues.addQueue(queue);
    outputs.setOutput(Kr::LgTypes::Warning,
                      std::make_shared<Kr::LgOutput>(Kr::LgFile::create(settings), "file", format));
    for (auto _ : state)
    {
        state.PauseTiming();
        fill(*queue);
        state.ResumeTiming();
        if (reader.flushAll() != messages)
            state.SkipWithError("messages are missing");
        outputs.flush(true);
    }
    state.SetItemsProcessed(state.iterations() * messages);
}

/// What the worker thread of the peer does with each message that it takes from its queue.
void spdlogSink(benchmark::State& state)
{
    const TemporaryFile file;
    spdlog::sinks::basic_file_sink_st sink(file.path);
    sink.set_pattern("%Y-%m-%dT%H:%M:%S.%fZ  %-14l  %P:%t  %n  %v");
    const spdlog::details::log_msg message("group", spdlog::level::warn, text);
    for (auto _ : state)
    {
        state.PauseTiming();
        state.ResumeTiming();
        for (int i = 0; i < messages; ++i)
            sink.log(message);
        sink.flush();
    }
    state.SetItemsProcessed(state.iterations() * messages);
}

/// The loop around a statement, to be taken off the next one.
void emptyLoop(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::ClobberMemory();
}

/// What a statement costs whose level is off.
void disabledStatement(benchmark::State& state)
{
    Kr::LgMajorGroup::initialize(nullptr);
    {
        const Kr::LgMinorGroup group(Kr::LgMajorGroup::getInstanceForName("Bench"), "Bench");
        int value = 0;
        for (auto _ : state)
        {
            KR_LOG(group, Tracing) << ++value;
            benchmark::ClobberMemory();
        }
        if (value != 0)
            state.SkipWithError("a value was computed");
    }
    Kr::LgMajorGroup::finalize();
}

BENCHMARK_TEMPLATE(drain, Kr::LgColumnFormat)->Name("drain");
BENCHMARK_TEMPLATE(drain, Kr::LgJsonFormat)->Name("drainJson");
BENCHMARK(spdlogSink);
BENCHMARK(emptyLoop);
BENCHMARK(disabledStatement);

} // namespace
