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
    /// The calling thread's producer, made at the first call; null while the logger is not up and
    /// inside the logger's own output.
    static LgProducer* get() noexcept;

    /// The same, but null when the thread's own producer has ended: what thread-local objects log
    /// after that has a producer for each message.
    static LgProducer* getLasting() noexcept;

    /// Lets go of the calling thread's producer: what it has logged stays for the reader.
    static void end() noexcept;

    /// Null if the session has ended or memory is short.
    LgQueue* getQueue() noexcept { return getQueue(0); }
    LgSpanRing* getRing() noexcept;

    /// Begins a message; null if it is dropped.
    LgStream* open(const char* group, LgTypes::Level level) noexcept;

    /// Completes the message that was begun last. Returns whether the producer has done its work.
    bool close();

private:
    // A message that is logged while the values of another one are computed goes into a queue of
    // its own, or the two texts would mix.
    static constexpr std::size_t maxDepth = 4;

    explicit LgProducer(bool isForOneMessage) noexcept;
    ~LgProducer() { leave(); }

    static LgProducer* joinCaller(std::uint32_t sessionNumber) noexcept;
    void join(std::uint32_t sessionNumber, unsigned long thread);
    void leave() noexcept;
    LgQueue* getQueue(std::size_t depth) noexcept;
    std::shared_ptr<LgQueue> makeQueue() const;

    const bool _isForOneMessage; // its thread is about to end
    std::uint32_t _sessionNumber;
    unsigned long _thread; // the number under which its records appear
    std::size_t _depth;
    std::array<std::shared_ptr<LgQueue>, maxDepth> _queues;
    std::shared_ptr<LgSpanRing> _ring;
};

} // namespace Kr
