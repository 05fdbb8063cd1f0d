#pragma once

/// @file
/// Internal to the library: drains the queues of all threads into the outputs, in the order of the
/// messages' time stamps.
///
/// Used by one thread at a time. Takes no memory but for the order of more queues than there were
/// before, and does without where there is none.
///
/// Pitfall: a message is seen when its thread has completed it. One
/// that was begun before, but completed after a message that is written already, comes behind it.

#include <base/internal/log/lgCountsText.h>
#include <base/internal/log/lgOutputs.h>
#include <base/internal/log/lgRegistry.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Kr
{

class LgReader
{
public:
    /// Sees every record that is read, before its output does.
    using Watcher = std::function<void(const LgRecord&)>;

    /// Both must outlive it.
    LgReader(LgRegistry& queues, LgOutputs& outputs);
    LgReader(const LgReader&) = delete;
    LgReader& operator=(const LgReader&) = delete;

    void setWatcher(Watcher watcher) { _watcher = std::move(watcher); }

    bool eventsPending() noexcept;

    /// Takes the waiting event with the earliest time stamp to its output; false if none waits.
    bool flushEarliest() noexcept { return flushEarliest(~0ULL); }

    /// Takes every event that was logged before the call to its output, and drops the queues whose
    /// threads have ended. Returns how many events there were.
    std::size_t flushAll() noexcept;

    /// Takes a record that no queue holds to its output, in the place where `flushAll` ended last.
    void add(LgRecord record) noexcept;

    /// The sum of the overflow entries' counts. May be called by any thread.
    std::uint64_t getOverflowCount() const { return _overflowed.load(std::memory_order_relaxed); }

    /// How many messages were read that had been cut. May be called by any thread.
    std::uint64_t getCutCount() const { return _cut.load(std::memory_order_relaxed); }

private:
    struct Head
    {
        unsigned long long timeStamp;
        unsigned int turn; // of the queues of one thread, which may hold messages of one moment
        LgQueue* queue;
    };

    static Head getHead(LgQueue* queue);
    static bool isLater(const Head& a, const Head& b)
    {
        return a.timeStamp != b.timeStamp ? a.timeStamp > b.timeStamp : a.turn > b.turn;
    }
    static bool isWaiting(const LgQueue& queue, unsigned long long until);
    bool makeRoomForHeads(std::size_t count) noexcept;
    void addHead(LgQueue* queue, unsigned long long until);
    bool flushEarliest(unsigned long long until) noexcept;
    std::size_t flushInOrder(const LgRegistry::Queues& queues, unsigned long long until);
    void flushEvent(LgQueue* queue);
    LgRecord readRecord(LgQueue* queue);
    LgRecord readOverflow(LgQueue* queue);
    void write(const LgRecord& record) noexcept;

    LgRegistry& _queues;
    LgOutputs& _outputs;
    Watcher _watcher;
    std::vector<Head> _heads; // a heap, the earliest in front
    std::unique_ptr<char[]> _buffer;
    char _overflowText[LgCountsText::size];
    std::string _threadName;
    unsigned long long _lastFlush;
    std::atomic<std::uint64_t> _overflowed;
    std::atomic<std::uint64_t> _cut;
};

} // namespace Kr
