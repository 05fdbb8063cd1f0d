// What it costs to start a program and wait for its end, from a small parent and from one with 1 GB
// resident, and to collect what a program writes, beside the system's own calls.

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

template <class Start>
void measure(benchmark::State& state, Start start)
{
    const Ballast ballast(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state)
        start();
}

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

void startLibrary(benchmark::State& state)
{
    const Kr::OsCommand command("/bin/true");
    measure(state, [&command] { check(Kr::OsProcess(command).wait().isSuccess()); });
}

void startPosixSpawn(benchmark::State& state)
{
    const char* const arguments[] = {"/bin/true", nullptr};
    measure(state, [&arguments] { waitFor(spawn(arguments, nullptr)); });
}

void startSystem(benchmark::State& state)
{
    measure(state, [] { check(std::system("/bin/true") == 0); }); // NOLINT: the peer
}

void startFork(benchmark::State& state)
{
    measure(state,
            []
            {
                const pid_t number = ::fork();
                if (number == 0)
                {
                    ::execl("/bin/true", "/bin/true", nullptr);
                    ::_exit(1);
                }
                waitFor(number);
            });
}

void parents(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Arg(0)->Arg(1024)->UseRealTime()->Unit(benchmark::kMicrosecond);
}

BENCHMARK(startLibrary)->Apply(parents);
BENCHMARK(startPosixSpawn)->Apply(parents);
BENCHMARK(startSystem)->Apply(parents);
BENCHMARK(startFork)->Apply(parents);

// Collecting 256 MiB

constexpr std::size_t collectedSize = std::size_t{256} << 20;

void collectLibrary(benchmark::State& state)
{
    const Kr::OsCommand command("/usr/bin/head", {"-c", "268435456", "/dev/zero"});
    for (auto _ : state)
        check(Kr::OsProcess::run(command).output.size() == collectedSize);
}

void collectReadLoop(benchmark::State& state)
{
    const char* const arguments[] = {"/usr/bin/head", "-c", "268435456", "/dev/zero", nullptr};
    for (auto _ : state)
    {
        int ends[2];
        check(::pipe2(ends, O_CLOEXEC) == 0);
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        const pid_t number = spawn(arguments, &actions);
        ::posix_spawn_file_actions_destroy(&actions);
        ::close(ends[1]);
        std::string output;
        const std::unique_ptr<char[]> block(new char[65536]);
        for (ssize_t count = 0; (count = ::read(ends[0], block.get(), 65536)) > 0;)
            output.append(block.get(), static_cast<std::size_t>(count));
        ::close(ends[0]);
        waitFor(number);
        check(output.size() == collectedSize);
    }
}

BENCHMARK(collectLibrary)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(collectReadLoop)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace
