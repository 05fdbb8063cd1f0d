// What an error costs: raise and catch against a plain throw, and a copy of an exception against
// the copy of an object with the same bases and arrays that copies itself whole.

#include <base/assert.h>
#include <base/exBase.h>
#include <base/trace.h>

#include <benchmark/benchmark.h>

#include <stdexcept>

namespace
{

constexpr char reason[] = "The lens cannot be focused at this depth";
static_assert(sizeof reason == 40 + 1);

/// The same data, copied as the compiler does it.
struct WholeException : std::runtime_error
{
    WholeException()
        : std::runtime_error("")
    {
    }
    char detailedReason[Kr::ExBase::reasonSize] = {};
    char reason[Kr::ExBase::reasonSize] = {};
    char fileName[Kr::ExBase::fileNameSize] = {};
    int line = 0;
};

[[gnu::noinline]] void throwStandard()
{
    throw std::runtime_error(reason);
}

[[gnu::noinline]] void raiseNew()
{
    Kr::raise<Kr::ExInternalError>(KR_HERE, reason);
}

[[gnu::noinline]] void raiseExisting()
{
    Kr::raise(Kr::ExInternalError(KR_HERE, reason));
}

[[gnu::noinline]] void failAssertion()
{
    KR_ASSERT(sizeof reason == 0);
}

template <void (*Raise)()>
void raiseAndCatch(benchmark::State& state)
{
    for (auto _ : state)
    {
        try
        {
            Raise();
        }
        catch (const std::runtime_error& error)
        {
            benchmark::DoNotOptimize(error.what());
        }
    }
}

template <class Exception>
void copy(benchmark::State& state, const Exception& original)
{
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(original);
        Exception copied(original);
        benchmark::DoNotOptimize(copied);
    }
}

void copyException(benchmark::State& state)
{
    copy(state, Kr::ExInternalError(KR_HERE, reason));
}

void copyWhole(benchmark::State& state)
{
    copy(state, WholeException());
}

void repeated(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Repetitions(11)->ReportAggregatesOnly();
}

BENCHMARK_TEMPLATE(raiseAndCatch, throwStandard)->Apply(repeated);
BENCHMARK_TEMPLATE(raiseAndCatch, raiseNew)->Apply(repeated);
BENCHMARK_TEMPLATE(raiseAndCatch, raiseExisting)->Apply(repeated);
BENCHMARK_TEMPLATE(raiseAndCatch, failAssertion)->Apply(repeated);
BENCHMARK(copyWhole)->Apply(repeated);
BENCHMARK(copyException)->Apply(repeated);

} // namespace
