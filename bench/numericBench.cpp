// Pow2 and FloatUtil::round beside the compiler's builtins and <cmath>. Each iteration works
// through the same 4096 values.

#include <base/floatUtil.h>
#include <base/pow2.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace
{

std::vector<std::uint32_t> getIntegers()
{
    std::mt19937 random(1);
    std::vector<std::uint32_t> values(4096);
    for (std::uint32_t& value : values)
        value = static_cast<std::uint32_t>(random() >> random() % 31) | 1U;
    return values;
}

std::vector<double> getReals()
{
    std::mt19937 random(1);
    std::vector<double> values(4096);
    for (double& value : values)
        value = std::uniform_real_distribution<double>(-1e6, 1e6)(random);
    return values;
}

/// Applies the function to all the values, keeping each result.
template <class T, class Function>
void run(benchmark::State& state, const std::vector<T>& values, Function function)
{
    for (auto _ : state)
        for (const T& value : values)
            benchmark::DoNotOptimize(function(value));
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(values.size()));
}

/// With the same results, as one would write it by hand.
std::uint32_t ceilBuiltin(std::uint32_t a)
{
    return a <= 1 ? a : 1U << ((31U ^ static_cast<unsigned>(__builtin_clz(a - 1))) + 1U) % 32U;
}

void BM_log2Floor(benchmark::State& state)
{
    run(state, getIntegers(), [](std::uint32_t a) { return Kr::Pow2::log2Floor(a); });
}
void BM_log2Floor_builtin_clz(benchmark::State& state)
{
    run(state, getIntegers(), [](std::uint32_t a) { return 31 ^ __builtin_clz(a); });
}
void BM_log2Floor_ilogb(benchmark::State& state)
{
    run(state, getIntegers(), [](std::uint32_t a) { return std::ilogb(static_cast<double>(a)); });
}
BENCHMARK(BM_log2Floor);
BENCHMARK(BM_log2Floor_builtin_clz);
BENCHMARK(BM_log2Floor_ilogb);

void BM_ceil(benchmark::State& state)
{
    run(state, getIntegers(), [](std::uint32_t a) { return Kr::Pow2::ceil(a); });
}
void BM_ceil_builtin_clz(benchmark::State& state)
{
    run(state, getIntegers(), ceilBuiltin);
}
void BM_ceil_exp2_log2(benchmark::State& state)
{
    run(state, getIntegers(),
        [](std::uint32_t a) { return std::exp2(std::ceil(std::log2(static_cast<double>(a)))); });
}
BENCHMARK(BM_ceil);
BENCHMARK(BM_ceil_builtin_clz);
BENCHMARK(BM_ceil_exp2_log2);

void BM_round(benchmark::State& state)
{
    run(state, getReals(), [](double x) { return Kr::FloatUtil::round(x); });
}
void BM_round_floor(benchmark::State& state)
{
    run(state, getReals(), [](double x) { return std::floor(x + 0.5); });
}
/// Halves away from zero: not the same results.
void BM_round_std(benchmark::State& state)
{
    run(state, getReals(), [](double x) { return std::round(x); });
}
/// Halves to even: not the same results.
void BM_round_nearbyint(benchmark::State& state)
{
    run(state, getReals(), [](double x) { return std::nearbyint(x); });
}
BENCHMARK(BM_round);
BENCHMARK(BM_round_floor);
BENCHMARK(BM_round_std);
BENCHMARK(BM_round_nearbyint);

} // namespace
