#include "workers.h"

#include <base/profScope.h>
#include <base/threadName.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <string>
#include <vector>

Workers::Workers(int threads, int tileSize)
    : _tileSize(tileSize)
{
    for (int number = 0; number < threads; ++number)
        _profilers.emplace_back("tile");
}

void Workers::render(const Tracer& tracer, Picture& picture)
{
    const std::vector<Tile> tiles = getTiles(picture);
    std::atomic<std::size_t> next{0};
    std::vector<std::future<void>> threads;
    int number = 0;
    for (Profiler& profiler : _profilers)
        threads.push_back(std::async(std::launch::async, &Workers::work, ++number,
                                     std::ref(profiler), std::cref(tracer), std::cref(tiles),
                                     std::ref(next), std::ref(picture)));
    for (std::future<void>& thread : threads)
        thread.wait();
    for (std::future<void>& thread : threads)
        thread.get();
}

void Workers::work(int number, Profiler& profiler, const Tracer& tracer,
                   const std::vector<Tile>& tiles, std::atomic<std::size_t>& next, Picture& picture)
{
    Kr::ThreadName::set(("render " + std::to_string(number)).c_str());
    for (std::size_t i = next++; i < tiles.size(); i = next++)
    {
        const Kr::ProfCycle cycle(profiler);
        tracer.render(tiles[i], picture);
    }
}

std::vector<Tile> Workers::getTiles(const Picture& picture) const
{
    std::vector<Tile> tiles;
    for (int top = 0; top < picture.getHeight(); top += _tileSize)
        for (int left = 0; left < picture.getWidth(); left += _tileSize)
            tiles.push_back({left, top, std::min(left + _tileSize, picture.getWidth()),
                             std::min(top + _tileSize, picture.getHeight())});
    return tiles;
}

Kr::ProfConsolidator Workers::getProfile()
{
    Kr::ProfConsolidator all;
    for (Profiler& profiler : _profilers)
        if (profiler.cycles() != 0)
            all.consolidate(profiler);
    return all;
}
