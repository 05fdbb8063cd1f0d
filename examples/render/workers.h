#pragma once

// The threads that render a picture, tile by tile.

#include "tracer.h"

#include <base/hwIntervalTimer.h>
#include <base/profConsolidator.h>
#include <base/profiler.h>

#include <atomic>
#include <deque>
#include <vector>

class Workers
{
public:
    using Profiler = Kr::Profiler<Kr::HwIntervalTimer>;

    /// @param tileSize in pixels, of a side
    Workers(int threads, int tileSize);

    /// Returns when all tiles are done; a failure of one is raised here.
    void render(const Tracer& tracer, Picture& picture);

    /// What tiles took, over all threads and pictures.
    Kr::ProfConsolidator getProfile();

private:
    static void work(int number, Profiler& profiler, const Tracer& tracer,
                     const std::vector<Tile>& tiles, std::atomic<std::size_t>& next,
                     Picture& picture);
    std::vector<Tile> getTiles(const Picture& picture) const;

    int _tileSize;
    std::deque<Profiler> _profilers; ///< of each thread
};
