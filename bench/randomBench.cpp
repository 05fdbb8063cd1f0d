// The generators beside those of the standard library, Boost and GSL, per sample or point: one at a
// time, through the virtual call, and in blocks of 1024. Peers have no blocks; a loop fills theirs.
// Two programs are made of this, one optimised like all benchmarks and one at -O2.

#include <base/rnGaussianRng.h>
#include <base/rnHaltonMultiRng.h>
#include <base/rnHammersleyMultiRng.h>
#include <base/rnHistogramRng.h>
#include <base/rnLecuyerUniformRng.h>
#include <base/rnNiederreiterMultiRng.h>
#include <base/rnNumRecUniformRng.h>
#include <base/rnScrambledRng.h>
#include <base/rnStdUniformRng.h>

#include <benchmark/benchmark.h>
#include <boost/random/additive_combine.hpp>
#include <boost/random/niederreiter_base2.hpp>
#include <boost/random/normal_distribution.hpp>
#include <boost/random/sobol.hpp>
#include <gsl/gsl_qrng.h>
#include <gsl/gsl_randist.h>
#include <gsl/gsl_rng.h>

#include <cstdint>
#include <memory>
#include <random>
#include <vector>

namespace
{

constexpr unsigned int blockLength = 1024;

/// The counter "ns" is what one sample or point takes.
void setCount(benchmark::State& state)
{
    state.counters["ns"] =
        benchmark::Counter(static_cast<double>(state.iterations() * blockLength) * 1e-9,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// --- values
// ---------------------------------------------------------------------------------------

/// Each iteration makes 1024 values, whose sum is kept.
template <class Draw>
void runSingle(benchmark::State& state, Draw draw)
{
    for (auto _ : state)
    {
        double sum = 0;
        for (unsigned int i = 0; i < blockLength; ++i)
            sum += draw();
        benchmark::DoNotOptimize(sum);
    }
    setCount(state);
}

/// Each iteration fills an array of 1024 values.
template <class Draw>
void runPeerBlock(benchmark::State& state, Draw draw)
{
    std::vector<double> values(blockLength);
    for (auto _ : state)
    {
        for (double& value : values)
            value = draw();
        benchmark::DoNotOptimize(values.data());
        benchmark::ClobberMemory();
    }
    setCount(state);
}

void single(benchmark::State& state, Kr::RnRng<double>& rng)
{
    runSingle(state, [&rng] { return rng(); });
}

void block(benchmark::State& state, Kr::RnRng<double>& rng)
{
    std::vector<double> values(blockLength);
    for (auto _ : state)
    {
        rng.getSequence(blockLength, values.data());
        benchmark::DoNotOptimize(values.data());
        benchmark::ClobberMemory();
    }
    setCount(state);
}

/// Any generator of the library that needs no argument, or one.
template <class Rng, class... Arguments>
void addLibrary(const char* name, Arguments... arguments)
{
    const std::string text = name;
    benchmark::RegisterBenchmark((text + "/single").c_str(),
                                 [=](benchmark::State& state)
                                 {
                                     Rng rng(arguments...);
                                     single(state, rng);
                                 });
    benchmark::RegisterBenchmark((text + "/block").c_str(),
                                 [=](benchmark::State& state)
                                 {
                                     Rng rng(arguments...);
                                     block(state, rng);
                                 });
}

/// `make` gives a function that draws one value.
template <class Make>
void addPeer(const char* name, Make make)
{
    const std::string text = name;
    benchmark::RegisterBenchmark((text + "/single").c_str(),
                                 [=](benchmark::State& state) { runSingle(state, make()); });
    benchmark::RegisterBenchmark((text + "/block").c_str(),
                                 [=](benchmark::State& state) { runPeerBlock(state, make()); });
}

using GslRng = std::shared_ptr<gsl_rng>;

GslRng makeGslRng(const gsl_rng_type* type)
{
    return GslRng(gsl_rng_alloc(type), gsl_rng_free);
}

/// The engine's value as a fraction, the cheapest way.
template <class Engine>
auto makeFraction()
{
    return [engine = Engine()]() mutable
    {
        return static_cast<double>(engine() - Engine::min()) *
               (1. / (static_cast<double>(Engine::max()) + 1));
    };
}

void addUniform()
{
    addLibrary<Kr::RnLecuyerUniformRng<double>>("uniform/RnLecuyerUniformRng");
    addLibrary<Kr::RnNumRecUniformRng<double>>("uniform/RnNumRecUniformRng");
    addLibrary<Kr::RnStdUniformRng<double>>("uniform/RnStdUniformRng");
    addPeer("uniform/std::minstd_rand", makeFraction<std::minstd_rand>);
    addPeer("uniform/std::mt19937", makeFraction<std::mt19937>);
    addPeer("uniform/boost::ecuyer1988", makeFraction<boost::random::ecuyer1988>);
    addPeer("uniform/gsl_rng_taus2", []
            { return [rng = makeGslRng(gsl_rng_taus2)] { return gsl_rng_uniform(rng.get()); }; });
    addPeer("uniform/gsl_rng_ran2",
            [] { return [rng = makeGslRng(gsl_rng_ran2)] { return gsl_rng_uniform(rng.get()); }; });
}

void addGaussian()
{
    static Kr::RnLecuyerUniformRng<double> uniform;
    addLibrary<Kr::RnGaussianRng<double>>("gaussian/RnGaussianRng", &uniform);
    addPeer("gaussian/std::normal_distribution",
            []
            {
                return
                    [engine = std::mt19937(), normal = std::normal_distribution<double>()]() mutable
                { return normal(engine); };
            });
    addPeer("gaussian/boost::normal_distribution",
            []
            {
                return [engine = std::mt19937(),
                        normal = boost::random::normal_distribution<double>()]() mutable
                { return normal(engine); };
            });
    addPeer("gaussian/gsl_ran_gaussian",
            [] {
                return [rng = makeGslRng(gsl_rng_taus2)] { return gsl_ran_gaussian(rng.get(), 1); };
            });
}

void addHistogram()
{
    static Kr::RnLecuyerUniformRng<double> uniform;
    for (const unsigned int bins : {1000U, 1000000U})
        for (const auto method :
             {Kr::RnHistogramRng<double>::Alias, Kr::RnHistogramRng<double>::Inverse})
        {
            const std::string name = "histogram/" + std::string(method == 0 ? "alias" : "inverse") +
                                     "/bins:" + std::to_string(bins);
            benchmark::RegisterBenchmark(
                name.c_str(),
                [=](benchmark::State& state)
                {
                    std::vector<double> weights(bins);
                    uniform.getSequence(bins, weights.data());
                    const Kr::RnHistogram<double> histogram(0, 1, bins, weights.data());
                    Kr::RnHistogramRng<double> rng(&uniform, histogram, method);
                    block(state, rng);
                });
        }
}

// --- points
// ---------------------------------------------------------------------------------------

template <unsigned int N>
void pointSingle(benchmark::State& state, Kr::RnMultiRng<double, N>& rng)
{
    double point[N];
    for (auto _ : state)
        for (unsigned int i = 0; i < blockLength; ++i)
        {
            rng.getSample(point);
            benchmark::DoNotOptimize(point);
        }
    setCount(state);
}

template <unsigned int N>
void pointBlock(benchmark::State& state, Kr::RnMultiRng<double, N>& rng)
{
    std::vector<double> values(N * blockLength);
    double* array[N];
    for (unsigned int c = 0; c < N; ++c)
        array[c] = &values[c * blockLength];
    for (auto _ : state)
    {
        rng.getSequence(blockLength, array);
        benchmark::DoNotOptimize(values.data());
        benchmark::ClobberMemory();
    }
    setCount(state);
}

template <unsigned int N, class Rng, class... Arguments>
void addPoints(const char* name, Arguments... arguments)
{
    const std::string text = name;
    benchmark::RegisterBenchmark((text + "/single").c_str(),
                                 [=](benchmark::State& state)
                                 {
                                     Rng rng(arguments...);
                                     pointSingle<N>(state, rng);
                                 });
    benchmark::RegisterBenchmark((text + "/block").c_str(),
                                 [=](benchmark::State& state)
                                 {
                                     Rng rng(arguments...);
                                     pointBlock<N>(state, rng);
                                 });
}

void addGslPoints(const char* name, const gsl_qrng_type* type, unsigned int dimension)
{
    benchmark::RegisterBenchmark(name,
                                 [=](benchmark::State& state)
                                 {
                                     gsl_qrng* const rng = gsl_qrng_alloc(type, dimension);
                                     double point[4];
                                     for (auto _ : state)
                                         for (unsigned int i = 0; i < blockLength; ++i)
                                         {
                                             gsl_qrng_get(rng, point);
                                             benchmark::DoNotOptimize(point);
                                         }
                                     gsl_qrng_free(rng);
                                     setCount(state);
                                 });
}

template <class Engine>
void addBoostPoints(const char* name)
{
    benchmark::RegisterBenchmark(name,
                                 [](benchmark::State& state)
                                 {
                                     Engine engine(4);
                                     double point[4];
                                     constexpr double scale = 1. / 18446744073709551616.;
                                     for (auto _ : state)
                                         for (unsigned int i = 0; i < blockLength; ++i)
                                         {
                                             for (double& coordinate : point)
                                                 coordinate = static_cast<double>(engine()) * scale;
                                             benchmark::DoNotOptimize(point);
                                         }
                                     setCount(state);
                                 });
}

void addSequences()
{
    addPoints<2, Kr::RnHaltonMultiRng<double, 2>>("points2/RnHaltonMultiRng");
    addPoints<2, Kr::RnHammersleyMultiRng<double, 2>>("points2/RnHammersleyMultiRng", 1024U);
    addGslPoints("points2/gsl_qrng_halton", gsl_qrng_halton, 2);
    addPoints<3, Kr::RnHaltonMultiRng<double, 3>>("points3/RnHaltonMultiRng");
    addPoints<3, Kr::RnHammersleyMultiRng<double, 3>>("points3/RnHammersleyMultiRng", 1024U);
    addGslPoints("points3/gsl_qrng_halton", gsl_qrng_halton, 3);
    addPoints<4, Kr::RnNiederreiterMultiRng<double>>("points4/RnNiederreiterMultiRng");
    addPoints<4, Kr::RnScrambledNiederreiterMultiRng<double>>(
        "points4/RnScrambledNiederreiterMultiRng", 1U);
    addGslPoints("points4/gsl_qrng_niederreiter_2", gsl_qrng_niederreiter_2, 4);
    addBoostPoints<boost::random::niederreiter_base2>("points4/boost::niederreiter_base2");
    addBoostPoints<boost::random::sobol>("points4/boost::sobol");
    addLibrary<Kr::RnVanDerCorputRng<double>>("values/RnVanDerCorputRng");
    addLibrary<Kr::RnVanDerCorputRng<double>>("values/RnVanDerCorputRng base 3", 3U);
    addLibrary<Kr::RnScrambledVanDerCorputRng<double>>("values/RnScrambledVanDerCorputRng", 1U);
}

} // namespace

int main(int argc, char** argv)
{
    addUniform();
    addGaussian();
    addHistogram();
    addSequences();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
