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

    /// A queue that counts what is left in it when it goes as lost.
    static std::shared_ptr<LgQueue> makeQueue(unsigned long thread);

    /// Counts what is left in the queue as lost.
    static void discardMessages(LgQueue& queue);

    /// Hands a producer's queue to the reader. May be called by any thread; waits for no output.
    /// What memory that takes is the producer's concern: the reader needs none.
    void addQueue(std::shared_ptr<LgQueue> queue);

    /// The queues, those included that were added since the last call. For the reader.
    const Queues& getQueues() noexcept;

    /// From now on there are spare queues for threads whose own is full.
    /// @param halfFullHandler that of each queue
    void keepSpares(void (*halfFullHandler)() noexcept) noexcept;

    /// Makes spare queues: some, and once of these one is taken as many as there may be, as far as
    /// there is memory. For the reader.
    void makeSpares() noexcept;

    /// Lets go of the drained queues whose creators have ended: as many become spare ones again as
    /// were made. For the reader.
    void dropFinishedQueues() noexcept;

    /// Has the producers' next statements ask for another session. For the reader.
    void leaveQueues() noexcept;

private:
    bool becomesSpare(const std::shared_ptr<LgQueue>& queue) const noexcept;

    std::mutex _mutex; // guards what producers add
    Queues _newQueues;

    Queues _queues;
    void (*_halfFullHandler)() noexcept = nullptr; // null: no spares
    std::size_t _spares = 0;                       // how many were made
};

} // namespace Kr
