#pragma once

/// @file
/// The queue of messages through which one thread logs: a ring of entries beside a ring of texts.
///
/// A thread that logs writes to its own queue and never waits, locks or allocates; a reader drains
/// the queues:
/// @code
/// Kr::LgQueue queue(1);
///
/// if (queue.reserveEntry(Kr::LgTypes::Warning)) // the producer
/// {
///     queue.getStream() << "low on memory: " << 12 << " pages left";
///     queue.addEntry();
/// }
///
/// while (!queue.isEmpty()) // the consumer
/// {
///     const Kr::LgQueue::Entry& entry = queue.readEntry();
///     if (entry.isOverflowEntry())
///     {
///         std::cout << entry.getOverflowCount() << " messages lost\n";
///     }
///     else
///     {
///         std::string text(queue.getStream().getNextSize() + 1, '\0');
///         queue.getStream() >> text.data();
///         std::cout << Kr::LgTypes::getLevelName(entry.getLevel()) << ": " << text.data() << '\n';
///     }
///     queue.removeEntry();
/// }
/// @endcode
/// When a ring is full the message is refused, and an overflow entry takes its place in the queue.
/// It counts this message and the ones refused after it, until the consumer reads it or a message
/// is accepted again; a refused message costs one counter increment. So nothing is lost without
/// being counted.
///
/// Exactly one thread produces and one consumes. The producer fills an entry before it advances the
/// end of the ring with release order; the consumer reads the end with acquire order before it
/// reads what it covers. An overflow entry that is already published still counts: each increment
/// and the consumer's look at the count are one atomic step on one word, and the look closes the
/// entry, so that a later loss opens another one.
///
/// Pitfalls: drain a queue before its destruction, which otherwise raises. Once reserved, an entry
/// should be added: whatever was appended for an abandoned one becomes the beginning of the next
/// message, or, if it was ended, the text of the next entry. For the same reason nothing is
/// appended to the stream of a queue outside a message.

#include <base/assert.h>
#include <base/hwCounter.h>
#include <base/krBaseApi.h>
#include <base/lgStream.h>
#include <base/lgTypes.h>
#include <base/objPtr.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>

namespace Kr
{

class ThreadLabel;

class KR_BASE_API LgQueue
{
public:
    class Entry;
    class Observer;
    class SuppressGuard;

    /// @param threadId the producing thread
    explicit LgQueue(unsigned long threadId);

    /// With rings of other sizes than the logger's, each a power of two from 4 up.
    LgQueue(unsigned long threadId, unsigned int numEntries, unsigned int numCharacters);

    /// Rings in memory of the caller's, which must outlive the queue.
    struct Rings
    {
        Entry* entries;
        unsigned int numEntries;
        char* characters;
        unsigned int numCharacters;
    };
    LgQueue(unsigned long threadId, const Rings& rings);

    LgQueue(const LgQueue&) = delete;
    LgQueue& operator=(const LgQueue&) = delete;

    /// Raises `ExInternalError`, and frees everything all the same, if the queue is not empty,
    /// unless the stack is being unwound.
    ~LgQueue() noexcept(false);

    // The producer's side

    /// Takes the next entry, with the time of now, for a message of that level, whose text is then
    /// appended to the stream. If it returns false the message is refused, because a ring is full
    /// or the queue is suppressed: append nothing.
    bool reserveEntry(LgTypes::Level level) { return reserveGroupEntry(level, 0); }

    /// The same for a message of the group of that number, see `LgMinorGroup::getNumber`.
    bool reserveGroupEntry(LgTypes::Level level, std::uint16_t group)
    {
        return reserve(level, group, LgTypes::InternalError);
    }

    /// Hands the message to the consumer. A message without text is dropped.
    inline void addEntry();

    /// Asks the observer to wait for room; returns at once if there is none. What the amount counts
    /// is between the caller and its observer.
    void waitForSpace(int amount) const;

    /// Whether an entry is reserved and not yet added.
    bool isReserved() const noexcept { return _entryReserved; }

    /// Has the producing thread call `handler` when half of the entries or of the characters are
    /// taken, which is the time to wake the consumer. To be set before the queue is in use. Costs
    /// nothing until then: the producer looks at the consumer's position only when half a ring is
    /// filled, and again when all of it is.
    void setHalfFullHandler(void (*handler)() noexcept) noexcept { _halfFullHandler = handler; }

    /// To be called when the producing thread ends.
    void creatorExit() noexcept { _creatorAlive.store(false, std::memory_order_release); }

    // The consumer's side

    /// The oldest entry. Raises `ExInternalError` if there is none.
    const Entry& readEntry() const;

    /// Done with the oldest entry. Raises `ExInternalError` if there is none.
    void removeEntry();

    /// A number of messages for each level.
    using Counts = std::array<std::uint32_t, LgTypes::NUM_LEVELS>;

    /// Of which levels the lost messages were: to be asked with the count of each overflow entry,
    /// once. The answers add up to what was lost of each level; a loss that happens at this moment
    /// may be told with its neighbour's entry.
    Counts takeLosses(int count) noexcept;

    /// For a consumer that must not lose what it has taken: from now on what was removed, texts
    /// too, stays in its ring until `release`. To be called before the queue is in use.
    void holdBack() noexcept;

    /// Gives back the room of what was removed.
    void release() noexcept;

    /// Whether there is an entry to be read: if the queue is not empty, but for what is held back.
    /// An overflow entry is read when nothing is held back before it, since there must be room for
    /// another one once it is closed.
    bool hasUnread() const noexcept;

    /// Once this is false the producer adds nothing more: what is in the queue now is the rest.
    bool isCreatorAlive() const noexcept { return _creatorAlive.load(std::memory_order_acquire); }

    // For either side

    LgStream& getStream() noexcept { return _stream; }
    const LgStream& getStream() const noexcept { return _stream; }

    inline bool isEmpty() const noexcept;

    /// Whether there is no room for a message. There may still be for an overflow entry.
    inline bool isFull() const noexcept;

    unsigned long getThreadId() const noexcept { return _threadId; }

    /// What the thread is called (base/threadName.h), which its records show. Set by the logger for
    /// its own queues, before they are shared; null otherwise.
    void setLabel(std::shared_ptr<const ThreadLabel> label) noexcept { _label = std::move(label); }
    const ThreadLabel* getLabel() const noexcept { return _label.get(); }
    static constexpr unsigned int getMaxSize() noexcept { return defaultNumEntries - 1; }

    /// Installs an observer, before the queue is in use, and returns the previous one. Raises
    /// `ExInternalError` if there is one already: so what it returns is always null.
    ObjPtrRet<Observer> changeObserver(ObjPtr<Observer> observer);

private:
    friend class LgProducer;
    friend class LgReader;
    friend class LgRegistry;
    friend class LgStatement;
    friend class LgKeptRings;

    /// Frees a ring, unless it is somebody else's.
    struct RingDelete
    {
        inline void operator()(Entry* ring) const noexcept;
        bool isBorrowed; // false unless it is said
    };

    static constexpr unsigned int defaultNumEntries = 1024;

    /// What keeps a statement from going straight into the queue.
    enum Detour : unsigned int
    {
        Suppressed = 1,
        Observed = 2,
        Left = 4, ///< the session that the queue belongs to has ended
    };

    /// Which slots of the ring are free from the producer's end up to the consumer's beginning, one
    /// apart: 0 when only that one is left.
    unsigned int getRoom(unsigned int beg, unsigned int end) const noexcept
    {
        return (beg - end - 1) & _mask;
    }
    bool look(unsigned int end, LgTypes::Level rank) noexcept;

    /// Whether a message of that rank would be lost for want of room.
    bool isFullFor(LgTypes::Level rank) noexcept
    {
        return _suppressCount == 0 && !hasRoom(_end.load(std::memory_order_relaxed), rank);
    }
    bool hasRoom(unsigned int end, LgTypes::Level rank) noexcept
    {
        return (end != _nextLook || look(end, rank)) && _stream.hasRoom(rank);
    }
    inline bool reserve(LgTypes::Level level, std::uint16_t group, LgTypes::Level rank);
    inline bool reserveOrdinary(LgTypes::Level level, std::uint16_t group) noexcept;
    inline void fill(unsigned int end, LgTypes::Level level, std::uint16_t group) noexcept;
    void leave() noexcept { _detours.fetch_or(Left, std::memory_order_relaxed); }

    /// Goes on for the thread that has used the other one until now.
    void succeed(const LgQueue& other) noexcept
    {
        _threadId = other._threadId;
        _label = other._label;
        _turn = other._turn + 1;
    }

    /// For an empty queue whose creator has ended: it may have another one.
    void retire() noexcept
    {
        _label = nullptr;
        _creatorAlive.store(true, std::memory_order_relaxed);
    }
    void countLoss(LgTypes::Level level) noexcept;
    void completeUnusual();
    void checkRoom(unsigned int end);
    void tellHalfFull() const noexcept;

    LgStream _stream;
    const std::unique_ptr<Entry[], RingDelete> _entries;
    const unsigned int _mask; // the ring's size less 1

    // Positions count modulo the ring's size. The consumer writes these ...
    alignas(LgStream::cacheLineSize) std::atomic<unsigned int> _beg{0}; // what it holds begins here
    unsigned int _next = 0; // the next entry to read; the same if it holds nothing back
    bool _holdsBack = false;
    Counts _toldLosses = {};

    // ... and the producer these.
    alignas(LgStream::cacheLineSize) std::atomic<unsigned int> _end{0}; // the next entry to fill
    unsigned int _nextLook; // up to where there is room without another look at `_beg`
    std::atomic<unsigned int> _detours{0};
    int _suppressCount = 0;
    bool _entryReserved = false;
    bool _isDisplaced = false; // a loss was counted where the reserved entry was

    std::atomic<bool> _creatorAlive{true};
    unsigned long _threadId;
    unsigned int _turn = 0; // how many queues the thread has used before
    std::shared_ptr<const ThreadLabel> _label;
    ObjPtr<Observer> _observer;
    void (*_halfFullHandler)() noexcept = nullptr;
    std::array<std::atomic<std::uint32_t>, LgTypes::NUM_LEVELS> _losses; // all that ever were
};

/// A message's level and time, or a number of lost messages and the time of the first.
class KR_BASE_API LgQueue::Entry
{
public:
    constexpr Entry() noexcept = default;

    /// A copy is the caller's own; the copy of an overflow entry that was read can count on.
    Entry(const Entry& other) noexcept
        : _oflow(other._oflow)
        , _isCut(other._isCut)
        , _group(other._group)
        , _word(other.getWord())
        , _timeStamp(other._timeStamp)
    {
    }
    Entry& operator=(const Entry& other) noexcept
    {
        _oflow = other._oflow;
        _isCut = other._isCut;
        _group = other._group;
        _word.store(other.getWord(), std::memory_order_relaxed);
        _timeStamp = other._timeStamp;
        return *this;
    }

    bool isOverflowEntry() const noexcept { return _oflow; }

    /// How many messages were lost. Raises `ExInternalError` if this is a message.
    int getOverflowCount() const;

    /// Raises `ExInternalError` if this is an overflow entry.
    LgTypes::Level getLevel() const;

    /// The number of the message's group, see `LgMinorGroup::getNumber`; 0: none.
    std::uint16_t getGroup() const noexcept { return _group; }

    /// Whether something of the message did not fit: a value that became "#", or the end.
    bool isCut() const noexcept { return _isCut; }

    /// In ticks of `HwCounter`.
    std::uint64_t getTimeStamp() const noexcept { return _timeStamp; }

    /// Makes this an overflow entry that counts one loss, or a message of level "Tracing"; nothing
    /// if it is one already.
    void setOverflowEntry(bool overflow) noexcept;

    /// Raises `ExInternalError` if this is a message.
    void incOverflowCount();

    /// Raises `ExInternalError` if this is an overflow entry.
    void setLevel(LgTypes::Level level);

    void setTimeStamp(std::uint64_t ticks) noexcept { _timeStamp = ticks; }

private:
    friend class LgQueue;

    /// Set in the word of an overflow entry that the consumer has seen: it counts no more.
    static constexpr std::uint32_t closedBit = 0x80000000;

    inline void setMessage(LgTypes::Level level, std::uint16_t group) noexcept;
    void setFirstLoss(std::uint64_t ticks) noexcept;
    bool countIfOpen() noexcept;
    void close() noexcept;

    std::uint32_t getWord() const noexcept
    {
        return _word.load(std::memory_order_relaxed) & ~closedBit;
    }

    bool _oflow = false;
    bool _isCut = false;
    std::uint16_t _group = 0;
    std::atomic<std::uint32_t> _word{0}; // the level or the count
    std::uint64_t _timeStamp = 0;
};

/// Is told when entries come and go. The queue owns it.
class KR_BASE_API LgQueue::Observer
{
public:
    virtual ~Observer();

    /// On the producing thread, after it added a message.
    virtual void entryAdded(LgQueue* queue) = 0;

    /// On the consuming thread, after it removed an entry.
    virtual void entryRemoved(LgQueue* queue) = 0;

    /// On the producing thread, which asks to wait for that much room.
    virtual void waitForSpace(LgQueue* queue, int amount) = 0;
};

/// While it exists, the producing thread's messages are dropped, uncounted: for code that must not
/// log, such as the logger's own output. For the producing thread.
class LgQueue::SuppressGuard
{
public:
    explicit SuppressGuard(LgQueue& queue) noexcept
        : _queue(queue)
    {
        if (_queue._suppressCount++ == 0)
            _queue._detours.fetch_or(Suppressed, std::memory_order_relaxed);
    }
    ~SuppressGuard()
    {
        if (--_queue._suppressCount == 0)
            _queue._detours.fetch_and(~unsigned{Suppressed}, std::memory_order_relaxed);
    }
    SuppressGuard(const SuppressGuard&) = delete;
    SuppressGuard& operator=(const SuppressGuard&) = delete;

private:
    LgQueue& _queue;
};

inline void LgQueue::RingDelete::operator()(Entry* ring) const noexcept
{
    if (!isBorrowed)
        delete[] ring;
}

inline void LgQueue::Entry::setMessage(LgTypes::Level level, std::uint16_t group) noexcept
{
    _oflow = false;
    _isCut = false;
    _group = group;
    _word.store(level, std::memory_order_relaxed);
}

/// @param rank how severe it counts as where room is kept for severe messages
inline bool LgQueue::reserve(LgTypes::Level level, std::uint16_t group, LgTypes::Level rank)
{
    if (_suppressCount > 0)
        return false;
    const unsigned int end = _end.load(std::memory_order_relaxed);
    if (!hasRoom(end, rank))
    {
        countLoss(level);
        return false;
    }
    fill(end, level, group);
    return true;
}

/// The same for a message that leaves room to severer ones, if there is room without another look
/// and nothing else is to be done; if not, it does nothing and returns false.
inline bool LgQueue::reserveOrdinary(LgTypes::Level level, std::uint16_t group) noexcept
{
    if (_entryReserved || _detours.load(std::memory_order_relaxed) != 0)
        return false;
    const unsigned int end = _end.load(std::memory_order_relaxed);
    if (end == _nextLook || !_stream.hasSeenRoom(level))
        return false;
    fill(end, level, group);
    return true;
}

inline void LgQueue::fill(unsigned int end, LgTypes::Level level, std::uint16_t group) noexcept
{
    // The stamp comes last: nothing else has to be kept over the call.
    Entry& entry = _entries[end];
    entry.setMessage(level, group);
    _stream.beginMessage();
    _entryReserved = true;
    entry._timeStamp = HwCounter::timeStamp();
}

inline void LgQueue::addEntry()
{
    if (!_entryReserved)
        return;
    _entryReserved = false;
    if (_isDisplaced || !_stream.endOrdinaryMessage())
    {
        completeUnusual();
        return;
    }
    _end.store((_end.load(std::memory_order_relaxed) + 1) & _mask, std::memory_order_release);
    if (!_observer.isNull())
        _observer->entryAdded(this);
}

inline bool LgQueue::isEmpty() const noexcept
{
    return _beg.load(std::memory_order_acquire) == _end.load(std::memory_order_acquire);
}

inline bool LgQueue::isFull() const noexcept
{
    const unsigned int beg = _beg.load(std::memory_order_acquire);
    return getRoom(beg, _end.load(std::memory_order_acquire)) < 2;
}

} // namespace Kr
