#pragma once

/// @file
/// Internal to the library: the logger's one state in the process, which is the session, if it
/// runs, the thread that drains it, and who else may.

#include <base/internal/log/lgSession.h>

#include <atomic>
#include <cstdint>
#include <memory>

namespace Kr
{

class LgLogState
{
public:
    // For those who log

    /// The number of the session; 0 while there is none.
    static std::uint32_t getSessionNumber() noexcept
    {
        return _number.load(std::memory_order_acquire);
    }

    /// Whether the calling thread can log and drain: not inside the logger's own output, nor while
    /// the logger is not up.
    static bool isAvailable() noexcept;

    /// Whether the calling thread is the one that started the session.
    static bool isMainThread() noexcept;
    static bool isBlocking() noexcept;

    /// Where the queues of the session of that number lie that outlive the process; null if none
    /// do, or it has ended.
    static std::shared_ptr<LgKeptRings> getKeptRings(std::uint32_t sessionNumber);

    /// What a thread adds to the session of that number; false if that has ended.
    static bool addQueue(std::uint32_t sessionNumber, const std::shared_ptr<LgQueue>& queue);
    static bool addRing(std::uint32_t sessionNumber, const std::shared_ptr<LgSpanRing>& ring);

    /// Starts the thread that drains the session of that number, unless it runs or that has ended.
    static void startReader(std::uint32_t sessionNumber) noexcept;

    /// Has that thread drain at once; starts it if that was not possible before.
    static void wakeReader() noexcept;

    // For those who drain

    /// Drains the session. Returns how many events there were.
    static std::size_t drain(LgDrain how) noexcept;

    /// The same for when the process is about to end, and whoever drains may never finish: gives
    /// up after a second.
    static void drainAtEnd(LgDrain how) noexcept;

    // For whoever starts and stops the logger

    static void start(std::unique_ptr<LgSession> session);
    static void stop();
    static std::uint64_t getLostCount();
    static std::uint64_t getCutCount();

    /// Empty ones while there is no session.
    static LgSettings getSettings();

    // For a process that forks

    /// Drains, and holds all locks from then on.
    static void lockForFork() noexcept;
    static void unlockAfterFork() noexcept;

    /// Replaces the session by one that goes on in the child. The caller holds the locks.
    /// @param isMainThread whether the thread that forked had started the session
    static void beginForkedSession(bool isMainThread) noexcept;

private:
    static std::atomic<std::uint32_t> _number;
};

} // namespace Kr
