#include <base/lgQueue.h>

#include <algorithm>
#include <exception>
#include <utility>

namespace Kr
{

static_assert(sizeof(LgQueue::Entry) == 16);

LgQueue::LgQueue(unsigned long threadId)
    : LgQueue(threadId, defaultNumEntries, LgStream::defaultRingSize)
{
}

LgQueue::LgQueue(unsigned long threadId, unsigned int numEntries, unsigned int numCharacters)
    : _stream(numCharacters)
    , _entries(new Entry[numEntries])
    , _mask(numEntries - 1)
    , _nextLook(numEntries / 2)
    , _threadId(threadId)
{
    KR_ASSERT(numEntries >= 4 && (numEntries & _mask) == 0);
    for (std::atomic<std::uint32_t>& losses : _losses)
        losses.store(0, std::memory_order_relaxed);
}

LgQueue::LgQueue(unsigned long threadId, const Rings& rings)
    : _stream(rings.characters, rings.numCharacters)
    , _entries(rings.entries, RingDelete{true})
    , _mask(rings.numEntries - 1)
    , _nextLook(rings.numEntries / 2)
    , _threadId(threadId)
{
    KR_ASSERT(rings.entries != nullptr && rings.numEntries >= 4 && (rings.numEntries & _mask) == 0);
    for (std::atomic<std::uint32_t>& losses : _losses)
        losses.store(0, std::memory_order_relaxed);
}

LgQueue::~LgQueue() noexcept(false)
{
    if (std::uncaught_exceptions() == 0)
        KR_ASSERT_TEXT(isEmpty(), "_beg == _end", 155);
}

// The producer's side

/// Looks at the consumer's position again. Returns whether there is room for a message of that
/// rank: the last free slot is kept for an overflow entry, and some before it for severe messages,
/// which look each time.
bool LgQueue::look(unsigned int end, LgTypes::Level rank) noexcept
{
    const unsigned int half = (_mask + 1) / 2;
    const unsigned int beg = _beg.load(std::memory_order_acquire);
    _nextLook = (beg + half) & _mask;
    if (((end - beg) & _mask) < half)
        return true;
    tellHalfFull();
    const unsigned int room = getRoom(beg, end);
    const unsigned int kept = LgStream::getMostKept(_mask + 1, rank);
    if (room >= 2 + kept)
    {
        _nextLook = (beg - 2 - kept) & _mask;
        return true;
    }
    const bool hasSlot = room >= 2 + LgStream::getKept(_mask + 1, rank);
    _nextLook = hasSlot ? (end + 1) & _mask : end;
    return hasSlot;
}

void LgQueue::tellHalfFull() const noexcept
{
    if (_halfFullHandler != nullptr)
        _halfFullHandler();
}

/// Adds a message that may be empty, cut or ended already, fills a ring, or was moved.
void LgQueue::completeUnusual()
{
    const bool isHalfFull = _stream.takeHalfFull();
    const bool isDisplaced = std::exchange(_isDisplaced, false);
    if ((_stream.getOutputFlags() & LgStream::TextWritten) == 0)
    {
        _stream.returnKept();
        return;
    }
    const unsigned int end = _end.load(std::memory_order_relaxed);
    if (isDisplaced)
        checkRoom(end);
    _entries[end]._isCut = _stream.isCut();
    _stream.endMessage();
    _end.store((end + 1) & _mask, std::memory_order_release);
    if (isHalfFull)
        tellHalfFull();
    if (!_observer.isNull())
        _observer->entryAdded(this);
}

void LgQueue::checkRoom(unsigned int end)
{
    const unsigned int room = getRoom(_beg.load(std::memory_order_acquire), end);
    KR_ASSERT_TEXT(room != 0, "_end+1U != _beg", 234);
    KR_ASSERT_TEXT(room != 1, "_end+2U != _beg", 235);
}

/// Counts a refused message in the newest entry, or in a new one if that is a message or is already
/// in the consumer's hands.
void LgQueue::countLoss(LgTypes::Level level) noexcept
{
    if (level < LgTypes::NUM_LEVELS)
        _losses[level].store(_losses[level].load(std::memory_order_relaxed) + 1,
                             std::memory_order_relaxed);
    const unsigned int end = _end.load(std::memory_order_relaxed);
    if (_entries[(end - 1) & _mask].countIfOpen())
        return;
    // There is a free slot: one is kept for the first overflow entry, and a consumer that closed it
    // has taken all entries before it.
    const unsigned int next = (end + 1) & _mask;
    if (_entryReserved)
        _entries[next] = _entries[end];
    _isDisplaced = _entryReserved;
    _entries[end].setFirstLoss(HwCounter::timeStamp());
    _nextLook = next;
    _end.store(next, std::memory_order_release);
}

void LgQueue::waitForSpace(int amount) const
{
    if (!_observer.isNull())
        _observer->waitForSpace(const_cast<LgQueue*>(this), amount);
}

// The consumer's side

const LgQueue::Entry& LgQueue::readEntry() const
{
    KR_ASSERT_TEXT(hasUnread(), "_beg != _end", 254);
    Entry& entry = _entries[_next];
    entry.close();
    return entry;
}

void LgQueue::removeEntry()
{
    KR_ASSERT_TEXT(hasUnread(), "_beg != _end", 262);
    _entries[_next].close(); // it may not have been read
    _next = (_next + 1) & _mask;
    if (!_holdsBack)
        _beg.store(_next, std::memory_order_release);
    if (!_observer.isNull())
        _observer->entryRemoved(this);
}

/// The least severe first: should there be more than were asked for, those are left over for which
/// the next entry is being made.
LgQueue::Counts LgQueue::takeLosses(int count) noexcept
{
    Counts taken = {};
    auto rest = static_cast<std::uint32_t>(count);
    for (std::size_t level = taken.size(); level-- != 0;)
    {
        const std::uint32_t losses = _losses[level].load(std::memory_order_acquire);
        taken[level] = std::min(losses - _toldLosses[level], rest);
        _toldLosses[level] += taken[level];
        rest -= taken[level];
    }
    return taken;
}

void LgQueue::holdBack() noexcept
{
    _holdsBack = true;
    _stream.holdBack();
}

/// Texts first: whoever sees room for an entry finds room for its text.
void LgQueue::release() noexcept
{
    _stream.release();
    _beg.store(_next, std::memory_order_release);
}

bool LgQueue::hasUnread() const noexcept
{
    const unsigned int end = _end.load(std::memory_order_acquire);
    if (_next == end)
        return false;
    const bool isNewest = ((_next + 1) & _mask) == end;
    return !_holdsBack || !isNewest || !_entries[_next].isOverflowEntry() ||
           _next == _beg.load(std::memory_order_relaxed);
}

ObjPtrRet<LgQueue::Observer> LgQueue::changeObserver(ObjPtr<Observer> observer)
{
    KR_ASSERT_AT(_observer.isNull(), 312);
    ObjPtr<Observer> previous(_observer);
    _observer = observer;
    if (!_observer.isNull())
        _detours.fetch_or(Observed, std::memory_order_relaxed);
    return previous;
}

LgQueue::Observer::~Observer() = default;

// Entries

int LgQueue::Entry::getOverflowCount() const
{
    KR_ASSERT_AT(_oflow, 49);
    return static_cast<int>(getWord());
}

LgTypes::Level LgQueue::Entry::getLevel() const
{
    KR_ASSERT_AT(!_oflow, 57);
    return static_cast<LgTypes::Level>(getWord());
}

void LgQueue::Entry::setOverflowEntry(bool overflow) noexcept
{
    if (overflow == _oflow)
        return;
    _oflow = overflow;
    _word.store(overflow ? 1U : std::uint32_t{LgTypes::Tracing}, std::memory_order_relaxed);
}

void LgQueue::Entry::incOverflowCount()
{
    KR_ASSERT_AT(_oflow, 87);
    countIfOpen();
}

void LgQueue::Entry::setLevel(LgTypes::Level level)
{
    KR_ASSERT_AT(!_oflow, 95);
    _word.store(level, std::memory_order_relaxed);
}

void LgQueue::Entry::setFirstLoss(std::uint64_t ticks) noexcept
{
    _timeStamp = ticks;
    _oflow = true;
    _word.store(1, std::memory_order_relaxed);
}

/// Counts one more loss, unless this is no overflow entry or the consumer has closed it. A count
/// that can grow no more stays where it is.
bool LgQueue::Entry::countIfOpen() noexcept
{
    if (!_oflow)
        return false;
    std::uint32_t word = _word.load(std::memory_order_acquire);
    while ((word & closedBit) == 0)
        if (word == ~closedBit ||
            _word.compare_exchange_weak(word, word + 1, std::memory_order_acq_rel))
            return true;
    return false;
}

/// The consumer's look at an overflow entry: from now on its count stands.
void LgQueue::Entry::close() noexcept
{
    if (_oflow)
        _word.fetch_or(closedBit, std::memory_order_acq_rel);
}

} // namespace Kr
