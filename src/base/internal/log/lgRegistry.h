#pragma once

/// @file
/// Internal to the library: the queues of all threads, which the logger's reader drains.

#include <base/lgQueue.h>

#include <memory>
#include <mutex>
#include <vector>

namespace Kr
{

class LgRegistry
{
public:
    LgRegistry() = default;
    LgRegistry(const LgRegistry&) = delete;
    LgRegistry& operator=(const LgRegistry&) = delete;

    /// Hands a producer's queue to the reader. May be called by any thread; waits for no output.
    void addQueue(std::shared_ptr<LgQueue> queue);

    /// The queues, those included that were added since the last call. For the reader.
    const std::vector<std::shared_ptr<LgQueue>>& getQueues();

    /// Lets go of the drained queues whose creators have ended. For the reader.
    void dropFinishedQueues();

private:
    std::mutex _mutex; // guards what producers add
    std::vector<std::shared_ptr<LgQueue>> _newQueues;

    std::vector<std::shared_ptr<LgQueue>> _queues;
};

} // namespace Kr
