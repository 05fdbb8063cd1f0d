#include <base/internal/log/lgProducer.h>

#include <base/internal/errors/processIdentity.h>
#include <base/internal/errors/threadLabel.h>
#include <base/internal/log/lgLogState.h>
#include <base/internal/log/lgLosses.h>
#include <base/internal/log/lgSpareQueues.h>
#include <base/internal/log/lgThreadSlot.h>
#include <base/lgTimeline.h>

#include <algorithm>
#include <atomic>
#include <exception>
#include <new>
#include <thread>
#include <utility>

namespace Kr
{

namespace
{

// In blocking mode every message starts with that much room, so that no shorter one is cut.
constexpr unsigned int roomAhead = 16383;

bool hasRoom(const LgQueue& queue)
{
    return !queue.isFull() && queue.getStream().getNumCharacters() >= roomAhead;
}

/// The producer that waits does the reader's work meanwhile, if nobody else is doing it.
void waitForRoom(const LgQueue& queue)
{
    while (!hasRoom(queue) && LgLogState::isAvailable())
    {
        LgLogState::drain(LgDrain::toBuffers);
        std::this_thread::yield();
    }
}

class BlockingObserver : public LgQueue::Observer
{
public:
    void entryAdded(LgQueue*) override {}
    void entryRemoved(LgQueue*) override {}
    void waitForSpace(LgQueue* queue, int) override { waitForRoom(*queue); }
};

/// A queue that outlives the process, as far as there is room for it and that is wanted.
std::shared_ptr<LgQueue> makeKeptQueue(std::uint32_t session, unsigned long thread,
                                       const std::shared_ptr<const ThreadLabel>& label)
{
    const std::shared_ptr<LgKeptRings> rings = LgLogState::getKeptRings(session);
    LgQueue* const queue = rings != nullptr ? rings->addQueue(thread, label) : nullptr;
    const auto discard = [rings](LgQueue* each)
    {
        LgRegistry::discardMessages(*each);
        rings->removeQueue(each);
    };
    return queue != nullptr ? std::shared_ptr<LgQueue>(queue, discard) : nullptr;
}

// Plain thread-locals, which can be looked at while the thread ends.
thread_local LgProducer* producer = nullptr;
thread_local bool isEnded = false;

/// That of the thread that started the session, which nothing else may be left to name.
std::atomic<LgProducer*> mainProducer{nullptr};

/// Ends the producer of its thread. That of the main thread lives on with the session: static
/// objects may log while they are destroyed.
void onThreadEnd() noexcept
{
    if (producer == nullptr || (LgLogState::isMainThread() && LgLogState::getSessionNumber() != 0))
        return;
    isEnded = true;
    LgProducer::end();
}

} // namespace

LgProducer* LgProducer::get() noexcept
{
    if (!LgLogState::isAvailable())
        return nullptr;
    const std::uint32_t number = LgLogState::getSessionNumber();
    if (producer != nullptr && producer->_sessionNumber == number)
        return producer;
    return joinCaller(number);
}

LgProducer* LgProducer::getLasting() noexcept
{
    LgProducer* const caller = isEnded ? nullptr : get();
    if (caller == nullptr || !caller->_isForOneMessage)
        return caller;
    endIfDone();
    return nullptr;
}

void LgProducer::end() noexcept
{
    if (producer == mainProducer)
        mainProducer = nullptr;
    delete producer;
    producer = nullptr;
}

void LgProducer::endWithSession() noexcept
{
    if (producer != nullptr && !producer->isWriting())
        end();
}

/// Joins the calling thread to the session of that number; null if memory is short.
LgProducer* LgProducer::joinCaller(std::uint32_t sessionNumber) noexcept
{
    if (producer == nullptr)
    {
        const bool isForOneMessage = isEnded || !ProcessIdentity::atThreadEnd(onThreadEnd);
        producer = new (std::nothrow) LgProducer(isForOneMessage);
    }
    if (producer == nullptr)
        return nullptr;
    const bool isMain = LgLogState::isMainThread();
    if (isMain)
        mainProducer = producer;
    producer->join(sessionNumber, isMain ? 0 : ProcessIdentity::getThreadId());
    LgLogState::startReader(sessionNumber);
    return producer;
}

LgProducer::LgProducer(bool isForOneMessage) noexcept
    : _isForOneMessage(isForOneMessage)
    , _sessionNumber(0)
    , _thread(0)
    , _isQueueShared(false)
{
}

/// Leaves the session for another one, where the thread has logged nothing yet.
void LgProducer::join(std::uint32_t sessionNumber, unsigned long thread)
{
    leave();
    _sessionNumber = sessionNumber;
    _thread = thread;
    _isQueueShared = false;
}

LgQueue* LgProducer::shareQueue() noexcept
{
    _isQueueShared = true;
    return getQueue(0);
}

LgSpanRing* LgProducer::getRing() noexcept
{
    if (_ring != nullptr)
        return _ring.get();
    try
    {
        auto ring = std::make_shared<LgSpanRing>(_thread);
        if (LgLogState::addRing(_sessionNumber, ring))
            _ring = std::move(ring);
    }
    catch (const std::exception&)
    {
        // Memory is short.
    }
    return _ring.get();
}

/// Fatal and internal errors make room for themselves in any mode. Where nobody waits, less severe
/// messages leave some to the severer ones.
LgQueue* LgProducer::open(std::uint16_t group, LgTypes::Level level) noexcept
{
    const std::size_t depth = findFreeDepth();
    LgQueue* queue = depth < _queues.size() ? _queues[depth].get() : nullptr;
    if (queue == nullptr)
    {
        countUnqueued(level);
        return nullptr;
    }
    const bool mayWait = level <= LgTypes::FatalError || LgLogState::isBlocking();
    if (level <= LgTypes::FatalError)
        waitForRoom(*queue);
    else
        queue->waitForSpace(1);
    const LgTypes::Level rank = mayWait ? LgTypes::InternalError : level;
    if (queue->isFullFor(rank))
    {
        if (!goOn(depth))
        {
            queue->countLoss(level);
            return nullptr;
        }
        queue = _queues[depth].get();
    }
    return queue->reserve(level, group, rank) ? queue : nullptr;
}

/// Goes on in a spare queue, if there is one: the full one is left to the reader. One whose address
/// has been given away stays.
bool LgProducer::goOn(std::size_t depth) noexcept
{
    std::shared_ptr<LgQueue>& queue = _queues[depth];
    const bool mayLeave = !(depth == 0 && _isQueueShared);
    std::shared_ptr<LgQueue> spare = mayLeave ? LgSpareQueues::get().take() : nullptr;
    if (spare == nullptr)
        return false;
    spare->succeed(*queue);
    queue->creatorExit();
    queue = std::move(spare);
    if (depth == 0)
        showQueue();
    return true;
}

/// There was no memory for a queue, or the session has just ended.
void LgProducer::countUnqueued(LgTypes::Level level) const noexcept
{
    if (_sessionNumber == LgLogState::getSessionNumber())
        LgLosses::countForWantOfMemory(level);
    else
        LgLosses::count(1);
}

void LgProducer::endIfDone() noexcept
{
    if (producer != nullptr && producer->_isForOneMessage && !producer->isWriting())
        end();
}

bool LgProducer::isWriting() const noexcept
{
    return std::any_of(_queues.begin(), _queues.end(),
                       [](const std::shared_ptr<LgQueue>& queue)
                       { return queue != nullptr && queue->isReserved(); });
}

void LgProducer::leave() noexcept
{
    LgThread::get().queue = nullptr;
    LgThreadSlot::set(nullptr);
    for (const std::shared_ptr<LgQueue>& queue : _queues)
        if (queue != nullptr)
            queue->creatorExit();
    _formerQueues = std::move(_queues);
    if (_ring != nullptr)
        _ring->end();
    _ring.reset();
}

LgQueue* LgProducer::getQueue(std::size_t depth) noexcept
{
    if (_queues[depth] != nullptr)
        return _queues[depth].get();
    try
    {
        std::shared_ptr<LgQueue> queue = makeQueue();
        if (LgLogState::addQueue(_sessionNumber, queue))
            _queues[depth] = std::move(queue);
        if (depth == 0)
            showQueue();
    }
    catch (const std::exception&)
    {
        // Memory is short: the message counts as lost, the next one tries again.
    }
    return _queues[depth].get();
}

/// From now on the thread's statements go into the queue without asking the producer, unless that
/// is for one message.
void LgProducer::showQueue() noexcept
{
    LgThread::get().queue = _queues[0].get();
    if (!_isForOneMessage)
        LgThreadSlot::set(_queues[0].get());
}

/// That of the first queue into which no message is being written, made if memory allows.
std::size_t LgProducer::findFreeDepth() noexcept
{
    std::size_t depth = 0;
    while (depth < _queues.size() && getQueue(depth) != nullptr && _queues[depth]->isReserved())
        ++depth;
    return depth;
}

std::shared_ptr<LgQueue> LgProducer::makeQueue() const
{
    const std::shared_ptr<ThreadLabel> label = ThreadLabel::ofCaller();
    std::shared_ptr<LgQueue> queue = makeKeptQueue(_sessionNumber, _thread, label);
    if (queue == nullptr)
    {
        queue = LgRegistry::makeQueue(_thread);
        queue->setLabel(label);
    }
    queue->setHalfFullHandler(LgLogState::wakeReader);
    if (LgLogState::isBlocking())
        queue->changeObserver(ObjPtr<LgQueue::Observer>(new BlockingObserver));
    return queue;
}

void LgTimeline::addSpan(const char* name, unsigned long long start,
                         unsigned long long end) noexcept
{
    LgProducer* caller = LgProducer::getLasting();
    LgSpanRing* ring = caller != nullptr ? caller->getRing() : nullptr;
    if (ring != nullptr)
        ring->add(name, start, end);
    else if (LgLogState::isAvailable())
        LgLosses::countSpans(1);
}

} // namespace Kr
