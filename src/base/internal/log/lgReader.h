#pragma once

/// @file
/// Internal to the library: drains the queues of all threads into the outputs, in the order of the
/// messages' time stamps.
///
/// Used by one thread at a time. Pitfall: a message is seen when its thread has completed it. One
/// that was begun before, but completed after a message that is written already, comes behind it.

#include <base/internal/log/lgOutputs.h>
#include <base/internal/log/lgRegistry.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
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

    bool eventsPending();

    /// Takes the waiting event with the earliest time stamp to its output; false if none waits.
    bool flushEarliest();

    /// Takes every event that was logged before the call to its output, and drops the queues whose
    /// threads have ended. Returns how many events there were.
    std::size_t flushAll();

    /// The sum of the overflow entries' counts. May be called by any thread.
    std::uint64_t getOverflowCount() const { return _overflowed.load(std::memory_order_relaxed); }

    /// How many messages were read that had been cut. May be called by any thread.
    std::uint64_t getCutCount() const { return _cut.load(std::memory_order_relaxed); }

private:
    struct Head
    {
        unsigned long long timeStamp;
        LgQueue* queue;
    };

    static bool isLater(const Head& a, const Head& b) { return a.timeStamp > b.timeStamp; }
    void addHead(LgQueue* queue, unsigned long long until);
    void flushEvent(LgQueue* queue);
    LgRecord readRecord(LgQueue* queue);
    LgRecord readOverflow(const LgQueue* queue);
    std::string_view getGroupName(std::uint16_t number);
    void write(const LgRecord& record);

    LgRegistry& _queues;
    LgOutputs& _outputs;
    Watcher _watcher;
    std::vector<Head> _heads; // a heap, the earliest in front
    std::unique_ptr<char[]> _buffer;
    char _overflowText[40];
    std::string _threadName;
    std::vector<std::string_view> _groupNames; // by number, as far as they were met
    std::atomic<std::uint64_t> _overflowed;
    std::atomic<std::uint64_t> _cut;
};

} // namespace Kr
