#include <base/internal/log/lgRegistry.h>

#include <base/internal/log/lgLosses.h>
#include <base/internal/log/lgSpareQueues.h>
#include <base/internal/log/lgTry.h>

namespace Kr
{

namespace
{

// What a thread fills while the reader wakes up, and more. Once they are short there will be all.
constexpr std::size_t sparesAtHand = 8;

} // namespace

std::shared_ptr<LgQueue> LgRegistry::makeQueue(unsigned long thread)
{
    const auto discard = [](LgQueue* queue)
    {
        discardMessages(*queue);
        delete queue;
    };
    return {new LgQueue(thread), discard};
}

void LgRegistry::discardMessages(LgQueue& queue)
{
    for (; !queue.isEmpty(); queue.release())
        for (; queue.hasUnread(); queue.removeEntry())
        {
            const LgQueue::Entry& entry = queue.readEntry();
            const int count = entry.isOverflowEntry() ? entry.getOverflowCount() : 1;
            LgLosses::count(static_cast<std::uint64_t>(count));
        }
}

void LgRegistry::addQueue(std::shared_ptr<LgQueue> queue)
{
    Queues one;
    one.push_back(std::move(queue));
    const std::lock_guard<std::mutex> lock(_mutex);
    _newQueues.splice(_newQueues.end(), one);
}

const LgRegistry::Queues& LgRegistry::getQueues() noexcept
{
    const std::lock_guard<std::mutex> lock(_mutex);
    _queues.splice(_queues.end(), _newQueues);
    return _queues;
}

void LgRegistry::keepSpares(void (*halfFullHandler)() noexcept) noexcept
{
    _halfFullHandler = halfFullHandler;
}

void LgRegistry::makeSpares() noexcept
{
    if (_halfFullHandler == nullptr || LgSpareQueues::get().count() >= sparesAtHand)
        return;
    const std::size_t wanted = _spares == 0 ? sparesAtHand : LgSpareQueues::maxSize;
    lgTry(
        [this, wanted]
        {
            for (; _spares < wanted; ++_spares)
            {
                Queues one;
                one.push_back(makeQueue(0));
                one.front()->setHalfFullHandler(_halfFullHandler);
                LgSpareQueues::get().put(one.front());
                _queues.splice(_queues.end(), one);
            }
        });
}

/// A creator's end is looked at first: nothing can be added to a queue after it.
void LgRegistry::dropFinishedQueues() noexcept
{
    _queues.remove_if(
        [this](const std::shared_ptr<LgQueue>& queue)
        { return !queue->isCreatorAlive() && queue->isEmpty() && !becomesSpare(queue); });
}

/// One that somebody else observes or suppresses does not.
bool LgRegistry::becomesSpare(const std::shared_ptr<LgQueue>& queue) const noexcept
{
    const bool isPlain = queue->_detours.load(std::memory_order_relaxed) == 0;
    if (!isPlain || LgSpareQueues::get().count() >= _spares)
        return false;
    queue->retire();
    return LgSpareQueues::get().put(queue);
}

void LgRegistry::leaveQueues() noexcept
{
    for (const std::shared_ptr<LgQueue>& queue : getQueues())
        queue->leave();
}

} // namespace Kr
