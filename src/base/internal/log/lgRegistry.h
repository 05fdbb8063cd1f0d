#pragma once

/// @file
/// Internal to the library: the queues of all threads, which the logger's reader drains.

#include <base/lgQueue.h>

#include <list>
#include <memory>
#include <mutex>

namespace Kr
{

class LgRegistry
{
public:
    using Queues = std::list<std::shared_ptr<LgQueue>>;

    LgRegistry() = default;
    LgRegistry(const LgRegistry&) = delete;
    LgRegistry& operator=(const LgRegistry&) = delete;

    /// Hands a producer's queue to the reader. May be called by any thread; waits for no output.
    /// What memory that takes is the producer's concern: the reader needs none.
    void addQueue(std::shared_ptr<LgQueue> queue);

    /// The queues, those included that were added since the last call. For the reader.
    const Queues& getQueues() noexcept;

    /// Lets go of the drained queues whose creators have ended. For the reader.
    void dropFinishedQueues() noexcept;

    /// Has the producers' next statements ask for another session. For the reader.
    void leaveQueues() noexcept;

private:
    std::mutex _mutex; // guards what producers add
    Queues _newQueues;

    Queues _queues;
};

} // namespace Kr
