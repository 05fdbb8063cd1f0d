#pragma once

/// @file
/// Internal to the library: the logger's one state in the process, which is the session, if it
/// runs, and who may drain it.

#include <base/internal/log/lgSession.h>

#include <cstdint>
#include <memory>

namespace Kr
{

class LgProducer;

class LgLogState
{
public:
    /// The calling thread's producer, made at the first call; null while the logger is not up and
    /// inside the logger's own output.
    static LgProducer* getProducer() noexcept;

    /// The same, but null when the thread's own producer has ended: what thread-local objects log
    /// after that has a producer for each message.
    static LgProducer* getLastingProducer() noexcept;

    /// Lets go of the calling thread's producer.
    static void endProducer() noexcept;

    /// What a producer adds to the session of that number; false if that has ended.
    static bool addQueue(std::uint32_t sessionNumber, const std::shared_ptr<LgQueue>& queue);
    static bool addRing(std::uint32_t sessionNumber, const std::shared_ptr<LgSpanRing>& ring);

    static bool isBlocking() noexcept;

    /// Whether the calling thread can drain: not inside the logger's own output, nor while the
    /// logger is not up.
    static bool mayDrain() noexcept;

    /// Drains the session. Returns how many events there were.
    static std::size_t drain(LgDrain how) noexcept;

    /// The same for when the process is about to end, and whoever drains may never finish: gives
    /// up after a second.
    static void drainAtEnd(LgDrain how) noexcept;

    /// Counts messages that neither a queue nor an output counts.
    static void countLost(std::uint64_t count) noexcept;

    static void start(std::unique_ptr<LgSession> session);
    static void stop();
    static std::uint64_t getLostCount();

    /// Empty ones while there is no session.
    static LgSettings getSettings();
};

} // namespace Kr
