#include <base/internal/log/lgReader.h>

#include <base/hwCounter.h>
#include <base/internal/errors/threadLabel.h>
#include <base/internal/log/lgGroupNames.h>

#include <algorithm>
#include <cassert>
#include <cstdio>
#include <cstring>

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
    , _overflowed(0)
    , _cut(0)
{
}

bool LgReader::eventsPending()
{
    for (const std::shared_ptr<LgQueue>& queue : _queues.getQueues())
        if (queue->hasUnread())
            return true;
    return false;
}

bool LgReader::flushEarliest()
{
    _heads.clear();
    for (const std::shared_ptr<LgQueue>& queue : _queues.getQueues())
        addHead(queue.get(), ~0ULL);
    if (_heads.empty())
        return false;
    flushEvent(_heads.front().queue);
    return true;
}

/// What is logged while this runs is left for the next time, so that it ends in any flood.
std::size_t LgReader::flushAll()
{
    const unsigned long long until = HwCounter::timeStamp();
    _heads.clear();
    for (const std::shared_ptr<LgQueue>& queue : _queues.getQueues())
        addHead(queue.get(), until);
    std::size_t count = 0;
    while (!_heads.empty())
    {
        LgQueue* queue = _heads.front().queue;
        std::pop_heap(_heads.begin(), _heads.end(), isLater);
        _heads.pop_back();
        flushEvent(queue);
        addHead(queue, until);
        ++count;
    }
    _queues.dropFinishedQueues();
    return count;
}

void LgReader::addHead(LgQueue* queue, unsigned long long until)
{
    if (!queue->hasUnread() || queue->readEntry().getTimeStamp() > until)
        return;
    _heads.push_back({queue->readEntry().getTimeStamp(), queue});
    std::push_heap(_heads.begin(), _heads.end(), isLater);
}

/// The entry goes before anything that may throw: text and entry are read together or not at all.
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
    const std::string_view group = getGroupName(entry.getGroup());
    assert(q->getStream().getNextSize() < BufSize);
    q->getStream() >> _buffer.get();
    _cut.fetch_add(entry.isCut() ? 1 : 0, std::memory_order_relaxed);
    return {entry.getLevel(), entry.getTimeStamp(), q->getThreadId(), group, _buffer.get(), 0,
            entry.isCut()};
}

std::string_view LgReader::getGroupName(std::uint16_t number)
{
    while (number >= _groupNames.size())
        _groupNames.push_back(
            LgGroupNames::getName(static_cast<std::uint16_t>(_groupNames.size())));
    return _groupNames[number];
}

LgRecord LgReader::readOverflow(const LgQueue* queue)
{
    const LgQueue::Entry& entry = queue->readEntry();
    const int count = entry.getOverflowCount();
    _overflowed.fetch_add(static_cast<std::uint64_t>(count), std::memory_order_relaxed);
    std::snprintf(_overflowText, sizeof _overflowText, "Event overflow [%d]", count);
    return {LgTypes::Informational, entry.getTimeStamp(),
            queue->getThreadId(),   {},
            _overflowText,          count};
}

void LgReader::write(const LgRecord& record)
{
    if (_watcher)
        _watcher(record);
    _outputs.write(record);
}

} // namespace Kr
