#include <base/internal/log/lgReader.h>

#include <base/hwCounter.h>
#include <base/internal/errors/threadLabel.h>
#include <base/internal/log/lgGroupNames.h>
#include <base/internal/log/lgTry.h>

#include <algorithm>
#include <cassert>
#include <cstdio>

namespace Kr
{

namespace
{

constexpr std::size_t BufSize = 32768; // the stream's

} // namespace

LgReader::LgReader(LgRegistry& queues, LgOutputs& outputs)
    : _queues(queues)
    , _outputs(outputs)
    , _buffer(new char[BufSize])
    , _lastFlush(HwCounter::timeStamp())
    , _overflowed(0)
    , _cut(0)
{
    _threadName.reserve(ThreadLabel::size);
}

bool LgReader::eventsPending() noexcept
{
    for (const std::shared_ptr<LgQueue>& queue : _queues.getQueues())
        if (queue->hasUnread())
            return true;
    return false;
}

bool LgReader::flushEarliest(unsigned long long until) noexcept
{
    LgQueue* earliest = nullptr;
    for (const std::shared_ptr<LgQueue>& queue : _queues.getQueues())
        if (isWaiting(*queue, until) &&
            (earliest == nullptr || isLater(getHead(earliest), getHead(queue.get()))))
            earliest = queue.get();
    if (earliest != nullptr)
        flushEvent(earliest);
    return earliest != nullptr;
}

/// What is logged while this runs is left for the next time, so that it ends in any flood.
std::size_t LgReader::flushAll() noexcept
{
    _lastFlush = HwCounter::timeStamp();
    const LgRegistry::Queues& queues = _queues.getQueues();
    std::size_t count = 0;
    if (makeRoomForHeads(queues.size()))
        count = flushInOrder(queues, _lastFlush);
    else
        while (flushEarliest(_lastFlush))
            ++count;
    _queues.dropFinishedQueues();
    return count;
}

bool LgReader::makeRoomForHeads(std::size_t count) noexcept
{
    _heads.clear();
    return lgTry([&] { _heads.reserve(count); });
}

std::size_t LgReader::flushInOrder(const LgRegistry::Queues& queues, unsigned long long until)
{
    for (const std::shared_ptr<LgQueue>& queue : queues)
        addHead(queue.get(), until);
    std::size_t count = 0;
    for (; !_heads.empty(); ++count)
    {
        LgQueue* queue = _heads.front().queue;
        std::pop_heap(_heads.begin(), _heads.end(), isLater);
        _heads.pop_back();
        flushEvent(queue);
        addHead(queue, until);
    }
    return count;
}

bool LgReader::isWaiting(const LgQueue& queue, unsigned long long until)
{
    return queue.hasUnread() && queue.readEntry().getTimeStamp() <= until;
}

LgReader::Head LgReader::getHead(LgQueue* queue)
{
    return {queue->readEntry().getTimeStamp(), queue->_turn, queue};
}

void LgReader::addHead(LgQueue* queue, unsigned long long until)
{
    if (!isWaiting(*queue, until))
        return;
    _heads.push_back(getHead(queue));
    std::push_heap(_heads.begin(), _heads.end(), isLater);
}

void LgReader::flushEvent(LgQueue* queue)
{
    LgRecord record =
        queue->readEntry().isOverflowEntry() ? readOverflow(queue) : readRecord(queue);
    if (queue->getLabel() != nullptr)
    {
        queue->getLabel()->copyTo(_threadName);
        record.threadName = _threadName;
    }
    queue->removeEntry();
    write(record);
}

LgRecord LgReader::readRecord(LgQueue* q)
{
    const LgQueue::Entry& entry = q->readEntry();
    const std::string_view group = LgGroupNames::getName(entry.getGroup());
    assert(q->getStream().getNextSize() < BufSize);
    q->getStream() >> _buffer.get();
    _cut.fetch_add(entry.isCut() ? 1 : 0, std::memory_order_relaxed);
    return {entry.getLevel(), entry.getTimeStamp(), q->getThreadId(), group, _buffer.get(), 0,
            entry.isCut()};
}

LgRecord LgReader::readOverflow(LgQueue* queue)
{
    const LgQueue::Entry& entry = queue->readEntry();
    const int count = entry.getOverflowCount();
    _overflowed.fetch_add(static_cast<std::uint64_t>(count), std::memory_order_relaxed);
    char intro[40];
    std::snprintf(intro, sizeof intro, "Event overflow [%d]", count);
    return {LgTypes::Informational,
            entry.getTimeStamp(),
            queue->getThreadId(),
            {},
            LgCountsText::write(_overflowText, intro, queue->takeLosses(count)),
            count};
}

void LgReader::add(LgRecord record) noexcept
{
    record.timeStamp = _lastFlush;
    write(record);
}

void LgReader::write(const LgRecord& record) noexcept
{
    if (_watcher)
        _watcher(record);
    _outputs.write(record);
}

} // namespace Kr
