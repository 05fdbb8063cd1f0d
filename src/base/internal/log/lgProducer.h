#pragma once

/// @file
/// Internal to the library: what one thread logs into. Made for a thread by the first thing that it
/// logs; from then on nothing is locked or allocated.

#include <base/internal/log/lgSpanRing.h>
#include <base/internal/log/lgThread.h>
#include <base/lgQueue.h>
#include <base/lgTypes.h>

#include <array>
#include <cstdint>
#include <memory>

namespace Kr
{

class LgProducer
{
public:
    /// The calling thread's producer, made at the first call; null while the logger is not up and
    /// inside the logger's own output.
    static LgProducer* get() noexcept;

    /// The same, but null when the thread's own producer has ended: what thread-local objects log
    /// after that has a producer for each message.
    static LgProducer* getLasting() noexcept;

    /// Lets go of the calling thread's producer: what it has logged stays for the reader.
    static void end() noexcept;

    /// The same when the session has ended, unless a message is being written.
    static void endWithSession() noexcept;

    /// The first queue, in which the thread stays from then on, however full it is. Null if the
    /// session has ended or memory is short.
    LgQueue* shareQueue() noexcept;
    LgSpanRing* getRing() noexcept;

    /// Begins a message, which the returned queue takes; null if it is dropped.
    /// @param group its number, see `LgMinorGroup`
    LgQueue* open(std::uint16_t group, LgTypes::Level level) noexcept;

    /// To be called when a message is complete: lets go of a producer for one message.
    static void endIfDone() noexcept;

private:
    // A message that is logged while the values of another one are computed goes into a queue of
    // its own, or the two texts would mix.
    using Queues = std::array<std::shared_ptr<LgQueue>, 4>;

    explicit LgProducer(bool isForOneMessage) noexcept;
    ~LgProducer() { leave(); }

    static LgProducer* joinCaller(std::uint32_t sessionNumber) noexcept;
    void join(std::uint32_t sessionNumber, unsigned long thread);
    void leave() noexcept;
    LgQueue* getQueue(std::size_t depth) noexcept;
    std::size_t findFreeDepth() noexcept;
    bool goOn(std::size_t depth) noexcept;
    void countUnqueued(LgTypes::Level level) const noexcept;
    void showQueue() noexcept;
    bool isWriting() const noexcept;
    std::shared_ptr<LgQueue> makeQueue() const;

    const bool _isForOneMessage; // nothing will tell of the end of its thread
    std::uint32_t _sessionNumber;
    unsigned long _thread; // the number under which its records appear
    bool _isQueueShared;   // somebody else may write into the first queue
    Queues _queues;
    Queues _formerQueues; // of the session that was left: a message may be on its way there
    std::shared_ptr<LgSpanRing> _ring;
};

} // namespace Kr
