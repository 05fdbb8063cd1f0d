// What the system's counters cost, beside reading the kernel's tables by hand.

#include <base/prQuery.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

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

void collect(benchmark::State& state, const std::vector<Kr::PrPath>& paths)
{
    Kr::PrQuery query;
    for (const Kr::PrPath& path : paths)
        query.add(path);
    const Kr::PrCounter& first = *query.getCounters().front();
    for (auto _ : state)
    {
        query.collect();
        benchmark::DoNotOptimize(first.getValue(0.));
    }
}

/// Reads the table and takes from it what is wanted.
template <class Take>
void readByHand(benchmark::State& state, const char* path, Take take)
{
    std::string text;
    for (auto _ : state)
    {
        readTable(path, text);
        take(text.c_str());
    }
}

// The time of all processors

void processorLibrary(benchmark::State& state)
{
    collect(state, {"\\Processor(_Total)\\% Processor Time"});
}
BENCHMARK(processorLibrary);

void processorByHand(benchmark::State& state)
{
    readByHand(state, "/proc/stat",
               [](const char* text)
               {
                   unsigned long long times[8] = {};
                   std::sscanf(text, "cpu %llu %llu %llu %llu %llu %llu %llu %llu", &times[0],
                               &times[1], &times[2], &times[3], &times[4], &times[5], &times[6],
                               &times[7]);
                   benchmark::DoNotOptimize(times);
               });
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
    collect(state, {{"Process", ownInstance(), "Working Set"}});
}
BENCHMARK(processLibrary);

void processByHand(benchmark::State& state)
{
    readByHand(state, "/proc/self/stat",
               [](const char* text)
               {
                   const char* field = std::strrchr(text, ')') + 2;
                   for (int number = 3; number < 24; ++number) // the resident pages are the 24th
                       while (*field++ != ' ')
                           continue;
                   benchmark::DoNotOptimize(std::strtoull(field, nullptr, 10));
               });
}
BENCHMARK(processByHand);

// Six counters at once

void sixLibrary(benchmark::State& state)
{
    const std::string self = ownInstance();
    collect(state, {"\\Processor(_Total)\\% Processor Time",
                    "\\Processor(_Total)\\% User Time",
                    "\\Memory\\Available Bytes",
                    "\\Memory\\Committed Bytes",
                    {"Process", self, "% Processor Time"},
                    {"Process", self, "Working Set"}});
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
