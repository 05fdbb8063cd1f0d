// Exact rates, and times at unequal rates: construction, comparison, addition and conversion,
// beside boost::rational, which takes its rates at run time as this library does, and std::chrono,
// whose rates are part of the type.

#include <base/dtTime.h>
#include <base/rational.h>

#include <boost/rational.hpp>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

namespace
{

constexpr std::size_t size = 1024;

using Terms = std::vector<std::pair<std::int32_t, std::int32_t>>;

/// The rates that occur: 24/1, 30000/1001, 48000/1, some of them not reduced.
Terms makeUsualTerms()
{
    const Terms usual = {{24, 1},      {25, 1},    {30000, 1001}, {60000, 1001}, {48000, 1},
                         {44100, 100}, {90000, 6}, {50, 2},       {1000, 40},    {24000, 1001}};
    std::mt19937 generator(1);
    Terms terms(size);
    for (auto& term : terms)
        term = usual[generator() % usual.size()];
    return terms;
}

Terms makeLargeTerms()
{
    std::mt19937 generator(2);
    Terms terms(size);
    for (auto& term : terms)
        term = {static_cast<std::int32_t>(generator() >> 1),
                static_cast<std::int32_t>(generator() >> 1) | 1};
    return terms;
}

template <class Fraction, Terms (*makeTerms)()>
void construct(benchmark::State& state)
{
    const Terms terms = makeTerms();
    std::size_t i = 0;
    for (auto _ : state)
    {
        const auto& [numerator, denominator] = terms[i++ % size];
        benchmark::DoNotOptimize(Fraction(numerator, denominator));
    }
}
BENCHMARK_TEMPLATE(construct, Kr::Rational, makeUsualTerms);
BENCHMARK_TEMPLATE(construct, boost::rational<int>, makeUsualTerms);
BENCHMARK_TEMPLATE(construct, Kr::Rational, makeLargeTerms);
BENCHMARK_TEMPLATE(construct, boost::rational<int>, makeLargeTerms);

// Times up to a day at two rates, near each other as times that are compared are. Each peer holds
// the same instants, and does each operation with the same result.

/// Counts and rates side by side.
struct Library
{
    using A = Kr::DtTime;
    using B = Kr::DtTime;

    static A makeA(std::int64_t count) { return {count, 24, 1}; }
    static B makeB(std::int64_t count) { return {count, 30000, 1001}; }
    static std::int64_t convert(const A& time, const Kr::Rational& rate)
    {
        return time.convertRate(rate).getCount();
    }
};

/// Seconds as a fraction.
struct Boost
{
    using A = boost::rational<std::int64_t>;
    using B = A;

    static A makeA(std::int64_t count) { return {count, 24}; }
    static B makeB(std::int64_t count) { return {count * 1001, 30000}; }
    static std::int64_t convert(const A& time, const Kr::Rational& rate)
    {
        const A ticks = time * A(rate.getNumerator(), rate.getDenominator());
        return ticks.numerator() / ticks.denominator();
    }
};

/// Counts, with the rates in the types.
struct Chrono
{
    using A = std::chrono::duration<std::int64_t, std::ratio<1, 24>>;
    using B = std::chrono::duration<std::int64_t, std::ratio<1001, 30000>>;

    static A makeA(std::int64_t count) { return A(count); }
    static B makeB(std::int64_t count) { return B(count); }
    static std::int64_t convert(const A& time, const Kr::Rational&)
    {
        return std::chrono::duration_cast<B>(time).count();
    }
};

template <class Peer>
struct Times
{
    Times()
    {
        std::mt19937 generator(3);
        for (std::size_t i = 0; i < size; ++i)
        {
            const std::int64_t second = generator() % 86400;
            a.push_back(Peer::makeA(second * 24 + generator() % 24));
            b.push_back(Peer::makeB(second * 30 + generator() % 30));
        }
    }

    std::vector<typename Peer::A> a;
    std::vector<typename Peer::B> b;
};

template <class Peer>
void compare(benchmark::State& state)
{
    const Times<Peer> times;
    std::size_t i = 0;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(times.a[i % size] < times.b[i % size]);
        ++i;
    }
}
BENCHMARK_TEMPLATE(compare, Library);
BENCHMARK_TEMPLATE(compare, Boost);
BENCHMARK_TEMPLATE(compare, Chrono);

template <class Peer>
void add(benchmark::State& state)
{
    const Times<Peer> times;
    std::size_t i = 0;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(times.a[i % size] + times.b[i % size]);
        ++i;
    }
}
BENCHMARK_TEMPLATE(add, Library);
BENCHMARK_TEMPLATE(add, Boost);
BENCHMARK_TEMPLATE(add, Chrono);

template <class Peer>
void convert(benchmark::State& state)
{
    const Times<Peer> times;
    Kr::Rational rate(30000, 1001);
    benchmark::DoNotOptimize(rate);
    std::size_t i = 0;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(Peer::convert(times.a[i % size], rate));
        ++i;
    }
}
BENCHMARK_TEMPLATE(convert, Library);
BENCHMARK_TEMPLATE(convert, Boost);
BENCHMARK_TEMPLATE(convert, Chrono);

/// Times of some hours, counted in nanoseconds: long ones must not cost more than short ones.
void convertHours(benchmark::State& state)
{
    std::mt19937_64 generator(4);
    std::vector<Kr::DtTime> times;
    for (std::size_t i = 0; i < size; ++i)
        times.emplace_back(
            static_cast<std::int64_t>(state.range(0) * 3600 * 1000000000LL +
                                      static_cast<std::int64_t>(generator() % 1000000000)),
            1000000000, 1);
    Kr::Rational rate(30000, 1001);
    benchmark::DoNotOptimize(rate);
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(times[i++ % size].convertRate(rate));
}
BENCHMARK(convertHours)->Arg(1)->Arg(200)->Arg(100000);

} // namespace
