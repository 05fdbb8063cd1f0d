// The option parser against the system's getopt, and the manager's snapshot of the environment
// against the live environment.
//
// The snapshot is taken while the library is loaded, so the program runs itself once more for each
// size of the environment.

#include <base/inInitMgr.h>
#include <base/inOptionParser.h>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace
{

constexpr char sizeVariable[] = "BENCH_ENVIRONMENT_SIZE";

std::vector<char*> pointersTo(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

// --- options ---

/// "program", then `count` arguments: a cluster, an attached value, a separate value, over and
/// over.
std::vector<std::string> makeArguments(std::size_t count)
{
    std::vector<std::string> arguments = {"program"};
    while (arguments.size() <= count)
        for (const char* argument : {"-vxq", "-oimage.tif", "-s", "1024"})
            arguments.emplace_back(argument);
    return arguments;
}

constexpr char options[] = "abcdvxqo:s:";

void getOptionLibrary(benchmark::State& state)
{
    std::vector<std::string> arguments = makeArguments(static_cast<std::size_t>(state.range(0)));
    std::vector<char*> argv = pointersTo(arguments);
    for (auto _ : state)
    {
        Kr::InOptionParser parser(static_cast<int>(arguments.size()), argv.data(), options);
        for (int option; (option = parser.getOption()) != -1;)
        {
            benchmark::DoNotOptimize(option);
            benchmark::DoNotOptimize(parser.getValue());
        }
    }
}

void getOptionSystem(benchmark::State& state)
{
    std::vector<std::string> arguments = makeArguments(static_cast<std::size_t>(state.range(0)));
    std::vector<char*> argv = pointersTo(arguments);
    for (auto _ : state)
    {
        optind = 0; // start anew
        for (int option;
             (option = getopt(static_cast<int>(arguments.size()), argv.data(), options)) != -1;)
        {
            benchmark::DoNotOptimize(option);
            benchmark::DoNotOptimize(optarg);
        }
    }
}

// --- environment ---

std::string variableName(std::size_t index)
{
    return "BENCH_VARIABLE_" + std::to_string(index);
}

/// Looks up names from all over the environment.
template <class Lookup>
void lookUp(benchmark::State& state, Lookup lookup)
{
    const std::size_t size = std::strtoul(std::getenv(sizeVariable), nullptr, 10);
    std::vector<std::string> names;
    for (std::size_t i = 0; i < 16; ++i)
        names.push_back(variableName(i * (size - 1) / 16));
    std::size_t next = 0;
    for (auto _ : state)
    {
        const char* value = lookup(names[next++ % names.size()].c_str());
        if (value == nullptr)
            state.SkipWithError("the variable is missing");
        benchmark::DoNotOptimize(value);
    }
}

void getEnvLibrary(benchmark::State& state)
{
    lookUp(state, Kr::InInitMgr::getEnv);
}

void getEnvSystem(benchmark::State& state)
{
    lookUp(state, [](const char* name) { return std::getenv(name); });
}

// --- running ---

void repeated(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Repetitions(11)->ReportAggregatesOnly();
}

void runOptions()
{
    BENCHMARK(getOptionSystem)->Arg(30)->Arg(10000)->Apply(repeated);
    BENCHMARK(getOptionLibrary)->Arg(30)->Arg(10000)->Apply(repeated);
    benchmark::RunSpecifiedBenchmarks();
}

void runEnvironment(const std::string& size)
{
    benchmark::RegisterBenchmark(("getEnvSystem/" + size).c_str(), getEnvSystem)->Apply(repeated);
    benchmark::RegisterBenchmark(("getEnvLibrary/" + size).c_str(), getEnvLibrary)->Apply(repeated);
    benchmark::RunSpecifiedBenchmarks();
}

/// The same arguments, but for the file of results, which gets the size into its name.
std::vector<std::string> argumentsFor(std::size_t size, char** argv)
{
    const std::string ending = ".json";
    std::vector<std::string> arguments;
    for (; *argv != nullptr; ++argv)
    {
        std::string argument = *argv;
        const std::size_t dot = argument.rfind(ending);
        if (argument.rfind("--benchmark_out=", 0) == 0 && dot != std::string::npos)
            argument.insert(dot, "-" + std::to_string(size));
        arguments.push_back(argument);
    }
    return arguments;
}

/// Runs this program in an environment of `size` variables. Returns its status.
int runUnder(std::size_t size, const std::vector<std::string>& given)
{
    std::vector<std::string> arguments = given;
    std::vector<char*> argv = pointersTo(arguments);
    std::vector<std::string> variables = {sizeVariable + ("=" + std::to_string(size))};
    for (std::size_t i = 0; i + 1 < size; ++i)
        variables.push_back(variableName(i) + "=some value of usual length");
    std::vector<char*> environment = pointersTo(variables);
    const pid_t child = fork();
    if (child == 0)
    {
        execve("/proc/self/exe", argv.data(), environment.data());
        _exit(127);
    }
    int status = 1;
    waitpid(child, &status, 0);
    return status;
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string> small = argumentsFor(30, argv);
    const std::vector<std::string> large = argumentsFor(3000, argv);
    benchmark::Initialize(&argc, argv); // takes its own arguments away
    if (const char* size = std::getenv(sizeVariable))
    {
        runEnvironment(size);
        return 0;
    }
    runOptions();
    return runUnder(30, small) == 0 && runUnder(3000, large) == 0 ? 0 : 1;
}
