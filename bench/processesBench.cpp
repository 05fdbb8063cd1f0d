// What it costs to start a program and wait for its end, from a small parent and from one with 1 GB
// resident, and to collect what a program writes, beside the system's own calls.

#include "race.h"

#include <base/osProcess.h>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <string>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace
{

void check(bool holds)
{
    if (!holds)
        std::abort();
}

/// Memory that is resident while a benchmark runs.
class Ballast
{
public:
    explicit Ballast(std::size_t megabytes)
        : _size(megabytes << 20)
        , _memory(new char[_size])
    {
        constexpr std::size_t page = 4096;
        for (std::size_t i = 0; i < _size; i += page)
            _memory[i] = 1;
        benchmark::DoNotOptimize(_memory.get());
    }

private:
    const std::size_t _size;
    const std::unique_ptr<char[]> _memory;
};

// Starting and waiting

pid_t spawn(const char* const* arguments, const posix_spawn_file_actions_t* actions)
{
    pid_t number = 0;
    check(::posix_spawn(&number, arguments[0], actions, nullptr,
                        const_cast<char* const*>(arguments), environ) == 0);
    return number;
}

void waitFor(pid_t number)
{
    int status = 0;
    check(::waitpid(number, &status, 0) == number && status == 0);
}

void startByFork()
{
    const pid_t number = ::fork();
    if (number == 0)
    {
        ::execl("/bin/true", "/bin/true", nullptr);
        ::_exit(1);
    }
    waitFor(number);
}

/// By itself, because this process pays for a fork long after it, when it writes to its memory.
void startFork(benchmark::State& state)
{
    const Ballast ballast(static_cast<std::size_t>(state.range(0)));
    race(state, benchmark::kMicrosecond, {{"fork", startByFork}});
}

/// @param state its argument is the size of the parent in megabytes
void start(benchmark::State& state)
{
    const Ballast ballast(static_cast<std::size_t>(state.range(0)));
    const Kr::OsCommand command("/bin/true");
    const char* const arguments[] = {"/bin/true", nullptr};
    race(state, benchmark::kMicrosecond,
         {{"library", [&] { check(Kr::OsProcess(command).wait().isSuccess()); }},
          {"spawn", [&] { waitFor(spawn(arguments, nullptr)); }},
          {"system", [] { check(std::system("/bin/true") == 0); }}}); // NOLINT: the peer
}
BENCHMARK(start)->Arg(0)->Arg(1024)->Iterations(100)->Unit(benchmark::kMillisecond);
BENCHMARK(startFork)->Arg(0)->Arg(1024)->Iterations(10)->Unit(benchmark::kMillisecond);

// Collecting 256 MiB

constexpr std::size_t collectedSize = std::size_t{256} << 20;

void collectByLibrary()
{
    const Kr::OsCommand command("/usr/bin/head", {"-c", "268435456", "/dev/zero"});
    check(Kr::OsProcess::run(command).output.size() == collectedSize);
}

/// Begins where every processor copies fast.
struct alignas(64) Block
{
    char bytes[65536];
};

/// What a program would write that knows the system: without limits in time, for one stream.
void collectByLoop()
{
    const char* const arguments[] = {"/usr/bin/head", "-c", "268435456", "/dev/zero", nullptr};
    int ends[2];
    check(::pipe2(ends, O_CLOEXEC) == 0);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    const pid_t number = spawn(arguments, &actions);
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    std::string output;
    const std::unique_ptr<Block> block(new Block);
    for (ssize_t count = 0; (count = ::read(ends[0], block->bytes, sizeof block->bytes)) > 0;)
        output.append(block->bytes, static_cast<std::size_t>(count));
    ::close(ends[0]);
    waitFor(number);
    check(output.size() == collectedSize);
}

void collect(benchmark::State& state)
{
    race(state, benchmark::kMillisecond, {{"library", collectByLibrary}, {"loop", collectByLoop}});
}
BENCHMARK(collect)->Iterations(5)->Unit(benchmark::kMillisecond);

} // namespace
