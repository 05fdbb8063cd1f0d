// What the system's counters cost, beside reading the kernel's tables by hand.

#include <base/prQuery.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace
{

/// The text of a table by the system's calls; the buffer keeps its room.
void readTable(const char* path, std::string& text)
{
    const int file = ::open(path, O_RDONLY | O_CLOEXEC);
    std::size_t size = 0;
    text.resize(64 * 1024);
    for (ssize_t count = 1; count > 0; size += static_cast<std::size_t>(count))
        count = ::read(file, &text[size], text.size() - size);
    ::close(file);
    text.resize(size);
}

std::string ownInstance()
{
    return Kr::PrQuery::findProcess(static_cast<unsigned long>(::getpid()));
}

void collect(benchmark::State& state, Kr::PrQuery& query)
{
    const Kr::PrCounter& first = *query.getCounters().front();
    for (auto _ : state)
    {
        query.collect();
        benchmark::DoNotOptimize(first.getValue(0.));
    }
}

// The time of all processors

void processorLibrary(benchmark::State& state)
{
    Kr::PrQuery query;
    query.add("\\Processor(_Total)\\% Processor Time");
    collect(state, query);
}
BENCHMARK(processorLibrary);

void processorByHand(benchmark::State& state)
{
    std::string text;
    for (auto _ : state)
    {
        readTable("/proc/stat", text);
        unsigned long long times[8] = {};
        std::sscanf(text.c_str(), "cpu %llu %llu %llu %llu %llu %llu %llu %llu", &times[0],
                    &times[1], &times[2], &times[3], &times[4], &times[5], &times[6], &times[7]);
        benchmark::DoNotOptimize(times);
    }
}
BENCHMARK(processorByHand);

void processorByStream(benchmark::State& state)
{
    for (auto _ : state)
    {
        std::ifstream table("/proc/stat");
        std::string name;
        unsigned long long times[8] = {};
        table >> name;
        for (unsigned long long& time : times)
            table >> time;
        benchmark::DoNotOptimize(times);
    }
}
BENCHMARK(processorByStream);

// The memory of this process

void processLibrary(benchmark::State& state)
{
    Kr::PrQuery query;
    query.add({"Process", ownInstance(), "Working Set"});
    collect(state, query);
}
BENCHMARK(processLibrary);

void processByHand(benchmark::State& state)
{
    std::string text;
    for (auto _ : state)
    {
        readTable("/proc/self/stat", text);
        const char* field = text.c_str() + text.rfind(')') + 2;
        for (int number = 3; number < 24; ++number) // the resident pages are the 24th
            while (*field++ != ' ')
                continue;
        benchmark::DoNotOptimize(std::strtoull(field, nullptr, 10));
    }
}
BENCHMARK(processByHand);

// Six counters at once

void sixLibrary(benchmark::State& state)
{
    const std::string self = ownInstance();
    Kr::PrQuery query;
    query.add("\\Processor(_Total)\\% Processor Time");
    query.add("\\Processor(_Total)\\% User Time");
    query.add("\\Memory\\Available Bytes");
    query.add("\\Memory\\Committed Bytes");
    query.add({"Process", self, "% Processor Time"});
    query.add({"Process", self, "Working Set"});
    collect(state, query);
}
BENCHMARK(sixLibrary);

void threeTables(benchmark::State& state)
{
    std::string text;
    for (auto _ : state)
        for (const char* path : {"/proc/stat", "/proc/meminfo", "/proc/self/stat"})
        {
            readTable(path, text);
            benchmark::DoNotOptimize(text.data());
        }
}
BENCHMARK(threeTables);

// A value that has been collected

void valueLibrary(benchmark::State& state)
{
    Kr::PrQuery query;
    const Kr::PrCounter& counter = query.add("\\Memory\\Available Bytes");
    query.collect();
    for (auto _ : state)
        benchmark::DoNotOptimize(counter.getValue());
}
BENCHMARK(valueLibrary);

} // namespace
