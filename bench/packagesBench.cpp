// An initialisation pass and how its cost grows. The closure, which decides the growth, is held
// against Boost.Graph's and against the cubic one that the order of start is defined by.

#include "manyPackages.h"

#include <base/inInitGuard.h>
#include <base/inReinitGuard.h>
#include <base/internal/init/inDependencyMatrix.h>

#include <benchmark/benchmark.h>
#include <boost/graph/adjacency_list.hpp>
#include <boost/graph/transitive_closure.hpp>

#include <algorithm>
#include <chrono>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace
{

using Dependencies = std::vector<std::vector<std::size_t>>; ///< of each package

enum Shape
{
    Chain,  ///< each needs the one before
    Fan,    ///< all need the first, the last needs all
    Sparse, ///< each needs four of those before, at random
    ShapeCount
};

const char* const shapeNames[] = {"chain", "fan", "sparse"};

std::vector<std::size_t> dependenciesOf(std::size_t i, Shape shape, std::size_t size,
                                        std::mt19937& random)
{
    std::vector<std::size_t> needed;
    if (i == 0)
        return needed;
    if (shape == Chain)
        needed.push_back(i - 1);
    else if (shape == Fan)
        for (std::size_t j = 0; j < (i == size - 1 ? i : 1); ++j)
            needed.push_back(j);
    else
        for (int count = 0; count < 4; ++count)
            needed.push_back(random() % i);
    return needed;
}

/// The indices are shuffled, so that they do not give the order away.
Dependencies makeDependencies(Shape shape, std::size_t size)
{
    std::mt19937 random(1);
    std::vector<std::size_t> place(size);
    for (std::size_t i = 0; i < size; ++i)
        place[i] = i;
    std::shuffle(place.begin(), place.end(), random);
    Dependencies all(size);
    for (std::size_t i = 0; i < size; ++i)
        for (const std::size_t j : dependenciesOf(i, shape, size, random))
            all[place[i]].push_back(place[j]);
    return all;
}

// The pass

double seconds(std::chrono::steady_clock::duration time)
{
    return std::chrono::duration<double>(time).count();
}

/// Once, and after the static objects of all sources, which register the library's own packages.
void startPackages()
{
    int argc = 0;
    const char* const* argv = nullptr;
    static const Kr::InInitGuard guard(argc, argv);
}

void pass(benchmark::State& state, Shape shape)
{
    startPackages();
    const auto size = static_cast<std::size_t>(state.range(0));
    const Dependencies dependencies = makeDependencies(shape, size);
    for ([[maybe_unused]] auto iteration : state)
    {
        std::vector<std::unique_ptr<Kr::InPackageInit>> packages;
        auto guard = std::make_unique<Kr::InReinitGuard>();
        for (std::size_t i = 0; i < size; ++i)
            packages.push_back(ManyPackages::make(i, dependencies[i]));
        const auto begin = std::chrono::steady_clock::now();
        guard.reset(); // runs the pass
        state.SetIterationTime(seconds(std::chrono::steady_clock::now() - begin));
    }
}

// The closure alone

void closureOfTheLibrary(benchmark::State& state, Shape shape)
{
    const auto size = static_cast<std::size_t>(state.range(0));
    const Dependencies dependencies = makeDependencies(shape, size);
    for ([[maybe_unused]] auto iteration : state)
    {
        Kr::InDependencyMatrix matrix(size);
        for (std::size_t i = 0; i < size; ++i)
            for (const std::size_t j : dependencies[i])
                matrix.set(i, j);
        benchmark::DoNotOptimize(matrix.close());
    }
}

void closureOfBoost(benchmark::State& state, Shape shape)
{
    using Graph = boost::adjacency_list<boost::vecS, boost::vecS, boost::directedS>;
    const auto size = static_cast<std::size_t>(state.range(0));
    const Dependencies dependencies = makeDependencies(shape, size);
    for ([[maybe_unused]] auto iteration : state)
    {
        Graph graph(size);
        for (std::size_t i = 0; i < size; ++i)
            for (const std::size_t j : dependencies[i])
                boost::add_edge(i, j, graph);
        Graph closure;
        boost::transitive_closure(graph, closure);
        benchmark::DoNotOptimize(closure);
    }
}

void cubicClosure(benchmark::State& state, Shape shape)
{
    const auto size = static_cast<std::size_t>(state.range(0));
    const Dependencies dependencies = makeDependencies(shape, size);
    for ([[maybe_unused]] auto iteration : state)
    {
        std::vector<std::vector<char>> matrix(size, std::vector<char>(size));
        for (std::size_t i = 0; i < size; ++i)
            for (const std::size_t j : dependencies[i])
                matrix[i][j] = 1;
        for (std::size_t i = 0; i < size; ++i)
            for (std::size_t k = 0; k < size; ++k)
                for (std::size_t j = 0; matrix[k][i] != 0 && j < size; ++j)
                    matrix[k][j] = static_cast<char>(matrix[k][j] | matrix[i][j]);
        benchmark::DoNotOptimize(matrix);
    }
}

using Benchmark = void (*)(benchmark::State&, Shape);

benchmark::internal::Benchmark* add(const char* name, Benchmark run, Shape shape)
{
    return benchmark::RegisterBenchmark((std::string(name) + "/" + shapeNames[shape]).c_str(), run,
                                        shape)
        ->Unit(benchmark::kMicrosecond)
        ->Arg(13)
        ->Arg(100)
        ->Arg(1000);
}

const bool registered = []
{
    for (int number = 0; number < ShapeCount; ++number)
    {
        const auto shape = static_cast<Shape>(number);
        add("pass", &pass, shape)->Arg(ManyPackages::max)->UseManualTime();
        add("closure", &closureOfTheLibrary, shape)->Arg(ManyPackages::max);
        add("closure_boost", &closureOfBoost, shape);
        add("closure_cubic", &cubicClosure, shape);
    }
    return true;
}();

} // namespace
