#pragma once

/// @file
/// Internal to the library: what one thread logs into. Made for a thread by the first thing that it
/// logs; from then on nothing is locked or allocated.

#include <base/internal/log/lgSpanRing.h>
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
    /// @param isForOneMessage its thread is about to end
    explicit LgProducer(bool isForOneMessage) noexcept;

    /// Leaves the session for another one, where the thread has logged nothing yet.
    /// @param sessionNumber see `LgLogState`
    /// @param thread the number under which the thread's records appear
    void join(std::uint32_t sessionNumber, unsigned long thread);
    std::uint32_t getSessionNumber() const { return _sessionNumber; }

    /// Null if the session has ended or memory is short.
    LgQueue* getQueue() noexcept { return getQueue(0); }
    LgSpanRing* getRing() noexcept;

    /// The queue if there is one already.
    LgQueue* findQueue() noexcept { return _queues[0].get(); }

    /// Begins a message; null if it is dropped.
    LgStream* open(const char* group, LgTypes::Level level) noexcept;

    /// Completes the message that was begun last. Returns whether the producer has done its work.
    bool close();

    /// The thread ends: what it has logged stays for the reader.
    void end();

private:
    // A message that is logged while the values of another one are computed goes into a queue of
    // its own, or the two texts would mix.
    static constexpr std::size_t maxDepth = 4;

    LgQueue* getQueue(std::size_t depth) noexcept;
    std::shared_ptr<LgQueue> makeQueue() const;

    const bool _isForOneMessage;
    std::uint32_t _sessionNumber;
    unsigned long _thread;
    std::size_t _depth;
    std::array<std::shared_ptr<LgQueue>, maxDepth> _queues;
    std::shared_ptr<LgSpanRing> _ring;
};

} // namespace Kr
